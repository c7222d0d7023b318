#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/byte_writer.h"
#include "support/model_builder.h"

// The bytes of small model files, one set of builders for each input format. Bytes that no reader looks at
// are filled with 0xEE, so that a wrong offset shows.

namespace facet {

/// What most formats hold of a mesh; one that lacks a part leaves it out.
struct BuiltMesh {
  std::string texture = "stone", shader = "default";
  std::vector<BuiltVertex> vertices;
  std::vector<uint16_t> indices;
};

/// Three vertices in which every number differs, and one triangle.
BuiltMesh builtTriangle(std::string texture = "stone", std::string shader = "default");

/// A square of `cells` x `cells` cells, two triangles each, at most 254; no two vertices are equal.
BuiltMesh builtGrid(uint32_t cells);

/// `count` bytes that stand for data of no interest.
ByteWriter filler(size_t count);

// VXM: the chunks of a visual come in the order header, names, vertices, indices. `version` is 3 or 4.

/// Id 1. Version 4: bounds of the mesh and `radius`; version 3: four bytes.
ByteWriter vxmHeader(int version, const BuiltMesh& mesh, float radius = 1);
/// Id 2.
ByteWriter vxmNames(const BuiltMesh& mesh);
/// Id 3, in version 3 id 7. A format that the version does not know gets records of 12 bytes.
ByteWriter vxmVertices(int version, uint32_t format, const BuiltMesh& mesh);
/// Id 4, in version 3 id 8.
ByteWriter vxmIndices(int version, const BuiltMesh& mesh);
/// Id 6 of version 3.
ByteWriter vxmBounds(const Vector3& low, const Vector3& high);
/// Id 6 of version 4 with one record.
ByteWriter vxmDetailLevel(uint32_t firstIndex, uint16_t triangles);

/// All chunks of one visual.
ByteWriter vxmVisual(int version, const BuiltMesh& mesh, uint32_t format = 0x112);
/// A root header and a container whose children are the visuals.
ByteWriter vxmHierarchy(int version, const std::vector<BuiltMesh>& meshes, uint32_t format = 0x112);

}  // namespace facet
