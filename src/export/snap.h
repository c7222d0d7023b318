#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/model.h"

// OBJ and POV print the distinct values of a mesh and let triangle corners refer to them by number. Two
// values are the same when they print the same, so each component is first replaced by the number that its
// own text denotes.

namespace facet {

/// Replaces c by the float that its "%f" text denotes; "-0.000000" gives +0.
void snapComponent(float& c);

/// Floats in records of `stride` bytes, `first` being the first component of the first record.
struct StridedFloats {
  float* first;
  size_t stride;
  uint32_t count;
};
StridedFloats positionsOf(Mesh& mesh);
StridedFloats normalsOf(Mesh& mesh);
StridedFloats textureCoordinatesOf(Mesh& mesh);

/// The distinct elements of an array in the order of their first appearance.
struct DistinctList {
  /// For each distinct value the number of the element that brought it.
  std::vector<uint32_t> firsts;
  /// For each element that a 16-bit index can reach, where its value stands in `firsts`. A value stands no
  /// further back than the element that brought it, so 16 bits hold every such place.
  std::vector<uint16_t> places;

  uint32_t size() const { return static_cast<uint32_t>(firsts.size()); }
};

/// Memory that a collection leaves for the next one.
using SlotTable = std::vector<uint32_t>;

/// Snaps the components of all elements in place and collects the distinct ones, in linear time.
DistinctList uniqueVec3(const StridedFloats& elements, SlotTable& table);
DistinctList uniqueVec2(const StridedFloats& elements, SlotTable& table);

/// The three lists of one mesh, which it leaves snapped.
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

}  // namespace facet
