#pragma once

#include <array>
#include <glm/glm.hpp>
#include <utility>

#include "support/picture_files.h"

// The bytes of model files, one set of builders for each input format: of the small files that tests write
// and of the sample scene. Bytes that no reader looks at are filled with 0xEE, so that a wrong offset shows.

namespace facet {

/// A vertex as tests write it down.
struct BuiltVertex {
  float x, y, z;
  float nx = 0, ny = 1, nz = 0;
  float u = 0, v = 0;

  glm::vec3 position() const { return {x, y, z}; }
  glm::vec3 normal() const { return {nx, ny, nz}; }
  glm::vec2 uv() const { return {u, v}; }
};

/// What most formats hold of a mesh; one that lacks a part leaves it out.
struct BuiltMesh {
  std::string texture = "stone", shader = "default";
  std::vector<BuiltVertex> vertices;
  std::vector<uint16_t> indices;
};

/// Three vertices in which every number differs, and one triangle.
BuiltMesh builtTriangle(std::string texture = "stone", std::string shader = "default");

/// A square of `cells` x `cells` cells, at most 254, with two triangles each. No two positions, normals or
/// texture coordinates are equal.
BuiltMesh builtGrid(uint32_t cells);

/// The vertices of all in the first mesh, and the indices as they are.
BuiltMesh joined(const std::vector<BuiltMesh>& meshes);

/// `count` bytes that stand for data of no interest.
ByteWriter filler(size_t count);

/// Texture and shader: chunk 2 of VXM and of 4A files.
ByteWriter nameChunk(const BuiltMesh& mesh);

// VXM: the chunks of a visual come in the order header, names, vertices, indices. `version` is 3 or 4.

/// Id 1. Version 4: bounds of the mesh and `radius`; version 3: four bytes.
ByteWriter vxmHeader(int version, const BuiltMesh& mesh, float radius = 1);
/// Id 3, in version 3 id 7. A format that the version does not know gets records of 12 bytes.
ByteWriter vxmVertices(int version, uint32_t format, const BuiltMesh& mesh);
/// Id 4, in version 3 id 8.
ByteWriter vxmIndices(int version, const BuiltMesh& mesh);
/// Id 6 of version 3.
ByteWriter vxmBounds(const glm::vec3& low, const glm::vec3& high);
/// Id 6 of version 4 with one record.
ByteWriter vxmDetailLevel(uint32_t firstIndex, uint16_t triangles);

/// All chunks of one visual.
ByteWriter vxmVisual(int version, const BuiltMesh& mesh, uint32_t format = 0x112);
/// The bytes of a visual of builtTriangle().
inline std::string triangleFile(std::string texture = "stone", std::string shader = "default") {
  return vxmVisual(4, builtTriangle(std::move(texture), std::move(shader))).bytes();
}
/// A root header and a container whose children are the visuals, in the formats in turn.
ByteWriter vxmHierarchy(int version, const std::vector<BuiltMesh>& meshes,
                        const std::vector<uint32_t>& formats = {0x112});

// Editable object.

/// Type 0 holds u, v in turn; other types one number for each entry.
struct ObjectMap {
  std::vector<float> values;
  uint8_t type = 0;
  uint8_t polygon = 0;  ///< second layout only
};
struct ObjectCorner {
  uint32_t point, reference;
};
using ObjectFace = std::array<ObjectCorner, 3>;
struct ObjectPair {
  uint32_t map, entry;
};
using ObjectReference = std::vector<ObjectPair>;
using ObjectFaceList = std::pair<std::string, std::vector<uint32_t>>;  ///< surface name, faces
struct ObjectMesh {
  std::vector<glm::vec3> points;
  std::vector<ObjectFace> faces;
  std::vector<ObjectReference> references;
  std::vector<ObjectFaceList> surfaces;
  std::vector<ObjectMap> maps;
};
struct ObjectSurface {
  std::string name, shader, texture;
};

/// One point, one reference and one map entry for each vertex; all faces on one surface.
ObjectMesh objectMesh(const BuiltMesh& mesh, std::string surface);
/// The chunks of one object mesh; `mapLayout` is 0x1011 or 0x1012.
ByteWriter objectMeshChunks(const ObjectMesh& mesh, uint32_t mapLayout = 0x1012);
/// Id 0x905, 0x906 or 0x907.
ByteWriter objectSurfaces(const std::vector<ObjectSurface>& surfaces, uint32_t layout = 0x907);
/// A whole file.
ByteWriter objectFile(const std::vector<ObjectMesh>& meshes, const std::vector<ObjectSurface>& surfaces,
                      uint32_t layout = 0x907, uint32_t mapLayout = 0x1012);

// 4A engine: a child holds material (the names), vertices, indices.

/// Id 3, with u, v but no normals.
ByteWriter model4aVertices(const BuiltMesh& mesh);
/// Id 5 with `leadRecords` records of 61 bytes before the vertices; values as near as 16 bits come.
ByteWriter model4aPackedVertices(const BuiltMesh& mesh, uint8_t leadRecords = 0);
/// Id 4.
ByteWriter model4aIndices(const BuiltMesh& mesh, uint32_t lead);
/// A header of 64 bytes and a container with a child for each mesh.
ByteWriter model4aMeshFile(const std::vector<BuiltMesh>& meshes, bool packed = false);
/// A header of 64 bytes and the names, as they stand in the list.
ByteWriter model4aListFile(std::string_view names);

/// An Orion mesh with these bytes behind it; `magic` is 257 or 258.
ByteWriter orionFile(const BuiltMesh& mesh, std::string_view trailer, uint32_t magic = 257);

// DS2MD. A version that begins with "0.6" has the interleaved layout.

/// A text: 16-bit length and bytes.
ByteWriter ds2mdText(std::string_view text);
ByteWriter ds2mdHead(std::string_view version, uint8_t meshCount);
/// A record, to be found by the "note" in its third text; its texture becomes a path. Names of one byte would
/// put zero bytes where the search stops too early.
ByteWriter ds2mdRecord(std::string_view version, const BuiltMesh& mesh);
/// A head and the records with zero bytes before each but the first.
ByteWriter ds2mdFile(std::string_view version, const std::vector<BuiltMesh>& meshes);

}  // namespace facet
