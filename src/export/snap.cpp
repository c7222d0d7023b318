#include "export/snap.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "export/millionths.h"

namespace facet {

namespace {

constexpr uint32_t emptySlot = UINT32_MAX;

template <class Vector>
uint64_t hashBits(const Vector& value) {
  std::array<uint32_t, 3> words{};
  static_assert(sizeof(Vector) <= sizeof words);
  std::memcpy(words.data(), &value, sizeof value);
  // Odd constants with no pattern; the high half of a product depends on all bits of its factors.
  uint64_t hash = (words[0] | uint64_t{words[1]} << 32) * 0x9E3779B97F4A7C15;
  hash = ((hash ^ hash >> 32) + words[2]) * 0xD6E8FEB86659FD93;
  return hash ^ hash >> 32;
}

template <class Vector>
bool sameBits(const Vector& a, const Vector& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

/// Open addressing: a slot holds the place of a value in the list.
template <class Vector>
DistinctList<Vector> collect(const StridedFloats& elements) {
  DistinctList<Vector> list;
  list.values.reserve(elements.count);
  list.places.resize(std::min<uint32_t>(elements.count, 65536));
  const size_t mask = std::bit_ceil(size_t{elements.count} * 2 + 1) - 1;
  std::vector<uint32_t> slots(mask + 1, emptySlot);

  auto* bytes = reinterpret_cast<std::byte*>(elements.first);
  for (uint32_t i = 0; i < elements.count; ++i, bytes += elements.stride) {
    auto* components = reinterpret_cast<float*>(bytes);
    std::for_each_n(components, sizeof(Vector) / sizeof(float), snapComponent);
    Vector value;
    std::memcpy(&value, components, sizeof value);

    size_t slot = hashBits(value) & mask;
    while (slots[slot] != emptySlot && !sameBits(list.values[slots[slot]], value)) slot = (slot + 1) & mask;
    if (slots[slot] == emptySlot) {
      slots[slot] = static_cast<uint32_t>(list.values.size());
      list.values.push_back(value);
    }
    if (i < list.places.size()) list.places[i] = static_cast<uint16_t>(slots[slot]);
  }
  return list;
}

}  // namespace

void snapComponent(float& c) {
  if (std::fabs(c) < 0x1p24F) {
    // A quotient of two integers that double holds exactly is the double nearest to the text's value.
    const auto magnitude = static_cast<float>(roundedMillionthsAsDouble(c) / 1e6);
    c = magnitude == 0 ? 0.0F : std::copysign(magnitude, c);
  } else if (std::isnan(c)) {
    c = std::copysign(std::numeric_limits<float>::quiet_NaN(), c);  // the text keeps only the sign
  }
  // Larger numbers are integers, and infinities print as such: their texts give them back.
}

StridedFloats positionsOf(Mesh& mesh) {
  return {reinterpret_cast<float*>(mesh.vertices.get()), sizeof(Vertex), mesh.vertexCount};
}

StridedFloats normalsOf(Mesh& mesh) {
  return {reinterpret_cast<float*>(mesh.normals.get()), sizeof(Vector3), mesh.vertexCount};
}

StridedFloats textureCoordinatesOf(Mesh& mesh) {
  StridedFloats floats = positionsOf(mesh);
  if (floats.count != 0) floats.first = &mesh.vertices[0].u;
  return floats;
}

DistinctList<Vector3> uniqueVec3(const StridedFloats& elements) {
  return collect<Vector3>(elements);
}
DistinctList<Vector2> uniqueVec2(const StridedFloats& elements) {
  return collect<Vector2>(elements);
}

DistinctLists collectDistinct(Mesh& mesh) {
  return {uniqueVec3(positionsOf(mesh)), uniqueVec3(normalsOf(mesh)), uniqueVec2(textureCoordinatesOf(mesh))};
}

}  // namespace facet
