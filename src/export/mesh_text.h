#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "export/text.h"
#include "model/model.h"
#include "platform/output.h"

// OBJ and POV print the distinct values of a mesh and let triangle corners refer to them by number. Two
// values are the same when they print the same, so each component is first replaced by the number that its
// own text denotes.

// A file's text is made in pieces on all cores and written in order. Each core holds one piece at a time, so
// memory does not grow with the file, and a piece fits a core's cache. Small models stay on the calling
// thread: they are done before another one has started. What a piece throws reaches the caller once all
// threads have ended.

namespace facet {

/// Replaces c by the float that its "%f" text denotes; "-0.000000" gives +0.
void snapComponent(float& c);

/// The distinct elements of an array in the order of their first appearance.
struct DistinctList {
  /// For each distinct value the number of the element that brought it.
  std::vector<uint32_t> firsts;
  /// For each element that a 16-bit index can reach, where its value stands in `firsts`. A value stands no
  /// further back than the element that brought it, so 16 bits hold every such place.
  std::vector<uint16_t> places;

  uint32_t size() const { return static_cast<uint32_t>(firsts.size()); }
};

/// The three lists of one mesh, which it leaves snapped; collected in linear time.
struct DistinctLists {
  DistinctList positions, normals, textureCoordinates;
};
DistinctLists collectDistinct(Mesh& mesh);

/// Where the corner with this index finds its value. An index that no vertex has finds the first entry, like
/// a search that meets nothing; so a mesh without any vertex has no triangles to print (printedTriangles).
inline uint32_t placeOf(const DistinctList& list, uint16_t index) {
  return index < list.places.size() ? list.places[index] : 0;
}
inline uint32_t printedTriangles(const Mesh& mesh) {
  return mesh.vertexCount == 0 ? 0 : mesh.indexCount / 3;
}

/// A corner's vertex as the writers print it: zeros for an index at or above vertexCount.
struct Corner {
  Vertex vertex;
  Vector3 normal;
};

inline Corner cornerAt(const Mesh& mesh, uint16_t index) {
  if (index >= mesh.vertexCount) return {};
  return {mesh.vertices[index], mesh.normals[index]};
}

/// Whole triangles; what is left of a partial one is not written.
inline uint32_t triangleCount(const Mesh& mesh) {
  return mesh.indexCount / 3;
}

inline uint32_t vertexCount(const Mesh& mesh) {
  return mesh.vertexCount;
}
inline uint32_t indexCount(const Mesh& mesh) {
  return mesh.indexCount;
}

/// Calls put(triangle, a, b, c) with the three indices of each triangle in first..end.
template <class Put>
void forTriangles(const Mesh& mesh, uint32_t first, uint32_t end, Put put) {
  for (uint32_t t = first; t < end; ++t) {
    const uint16_t* corners = &mesh.indices[size_t{t} * 3];
    put(t, corners[0], corners[1], corners[2]);
  }
}

/// The same with whole triangles only: those that have all their vertices.
template <class Put>
void forWholeTriangles(const Mesh& mesh, uint32_t first, uint32_t end, Put put) {
  forTriangles(mesh, first, end, [&](uint32_t, uint16_t a, uint16_t b, uint16_t c) {
    if (std::max({a, b, c}) < mesh.vertexCount) put(a, b, c);
  });
}

/// Indices of the whole triangles.
uint32_t wholeIndexCount(const Mesh& mesh);
bool hasWholeTriangle(const Mesh& mesh);

inline float finite(float value) {
  return std::isfinite(value) ? value : 0.0F;
}

/// The texture name of the mesh's material, empty where the model has no such material.
inline std::string_view textureNameOf(const Model& model, const Mesh& mesh) {
  return mesh.materialIndex < model.materials.size() ? model.materials[mesh.materialIndex].textureName
                                                     : std::string_view();
}

/// Makes one piece of a text.
using MakeText = std::function<void(TextBuffer&)>;

/// Writes the pieces that `next` gives, until it gives none or the output has failed. `next` is called by one
/// thread at a time.
void writePieces(size_t threads, Output& out, const std::function<MakeText()>& next);

/// Numbers of entries in the three lists of distinct values.
struct ListNumbers {
  uint64_t positions = 0, normals = 0, textureCoordinates = 0;
};

/// A mesh's lists and how many entries those of all earlier meshes have.
struct NumberedLists {
  DistinctLists lists;
  ListNumbers before;
};

struct ModernScene;

/// A mesh, its number in the model, its lists of distinct values in the formats that print those, and the
/// scene in the modern formats.
struct MeshRef {
  const Model& model;
  const Mesh& mesh;
  uint32_t number;
  const NumberedLists* lists = nullptr;
  const ModernScene* scene = nullptr;
};

/// One list in a mesh's text: what stands before it, and its items. Either may be none.
struct MeshSection {
  void (*head)(const MeshRef& mesh, TextBuffer& text);
  uint32_t (*itemCount)(const Mesh& mesh);
  void (*items)(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text);
};

/// Meshes first .. end - 1 of a model, with the lists of each or without any. Where there is a scene, meshes
/// without a whole triangle are left out.
struct MeshRange {
  const Model& model;
  uint32_t first, end;
  std::span<const NumberedLists> lists;
  const ModernScene* scene = nullptr;
};

/// Writes the sections of the first mesh, then those of the second ... A piece is a run of items, also across
/// meshes.
void writeMeshSections(const MeshRange& range, Output& out, std::span<const MeshSection> sections);
void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections);

/// Like writeMeshSections, with lists in every MeshRef. The lists of some meshes at a time are collected
/// on all cores, then their text is written; each mesh is left snapped. Sections of lists count the mesh's
/// vertices as items, and their items are cut at the list's size.
void writeDistinctSections(Model& model, Output& out, std::span<const MeshSection> sections,
                           const ModernScene* scene = nullptr);

/// What a format puts before, between and behind the numbers of an entry.
struct EntryStyle {
  std::string_view before, between, behind;
};

/// The model's axes as the exact formats turn them.
inline Vector3 mirrored(float x, float y, float z) {
  return {x, y, -z};
}
inline float asItIs(float value) {
  return value;
}

/// The items of a section that prints one of the lists; the axes are turned, v counts from the other end.
template <const EntryStyle& style, Vector3 (&turn)(float, float, float) = mirrored>
void putPositions(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctList& list = mesh.lists->lists.positions;
  for (uint32_t i = first; i < std::min(end, list.size()); ++i) {
    const Vertex& v = mesh.mesh.vertices[list.firsts[i]];
    const Vector3 p = turn(v.x, v.y, v.z);
    text.put(style.before, p.x, style.between, p.y, style.between, p.z, style.behind);
  }
}
template <const EntryStyle& style, Vector3 (&turn)(float, float, float) = mirrored>
void putNormals(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctList& list = mesh.lists->lists.normals;
  for (uint32_t i = first; i < std::min(end, list.size()); ++i) {
    const Vector3& normal = mesh.mesh.normals[list.firsts[i]];
    const Vector3 n = turn(normal.x, normal.y, normal.z);
    text.put(style.before, n.x, style.between, n.y, style.between, n.z, style.behind);
  }
}
template <const EntryStyle& style, float (&clean)(float) = asItIs>
void putTextureCoordinates(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  const DistinctList& list = mesh.lists->lists.textureCoordinates;
  for (uint32_t i = first; i < std::min(end, list.size()); ++i) {
    const Vertex& v = mesh.mesh.vertices[list.firsts[i]];
    text.put(style.before, clean(v.u), style.between, clean(1.0F - v.v), style.behind);
  }
}

/// The line above a list: `label`, its size, and the number of vertices that it came from.
inline void putListSize(std::string_view label, const DistinctList& list, const Mesh& mesh,
                        TextBuffer& text) {
  text.put(label, list.size(), ", was ", mesh.vertexCount, '\n');
}

}  // namespace facet
