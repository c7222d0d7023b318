#include "export/mesh_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>

#include "export/text.h"

namespace facet {

namespace {

constexpr uint32_t emptySlot = UINT32_MAX;

/// Elements of some floats each: the first one, and bytes from one to the next.
struct Elements {
  std::byte* first;
  size_t stride;
  uint32_t count;
};

/// Memory that a collection leaves for the next one.
using SlotTable = std::vector<uint32_t>;

/// The bits of one element.
template <size_t components>
using Bits = std::array<uint32_t, components>;

template <size_t components>
Bits<components> bitsOf(const Elements& elements, uint32_t element) {
  Bits<components> bits;
  std::memcpy(bits.data(), elements.first + element * elements.stride, sizeof bits);
  return bits;
}

/// Odd constants with no pattern. Round numbers have zeros in their low bits, and only the high half of a
/// product depends on all bits of its factors: it is folded down after each step.
template <size_t components>
uint64_t hashOf(const Bits<components>& bits) {
  uint64_t hash = (bits[0] | uint64_t{bits[1]} << 32) * 0x9E3779B97F4A7C15;
  hash ^= hash >> 32;
  if constexpr (components == 3) hash += uint64_t{bits[2]} << 16;
  hash *= 0xD6E8FEB86659FD93;
  return hash ^ hash >> 32;
}

template <size_t components>
void snapAll(const Elements& elements) {
  std::byte* element = elements.first;
  for (uint32_t i = 0; i < elements.count; ++i, element += elements.stride)
    std::for_each_n(reinterpret_cast<float*>(element), components, snapComponent);
}

/// Snaps all elements in place. Open addressing: a slot holds the place of a value in the list.
template <size_t components>
DistinctList collect(const Elements& elements, SlotTable& table) {
  snapAll<components>(elements);
  DistinctList list;
  list.firsts.reserve(elements.count);
  list.places.resize(std::min<uint32_t>(elements.count, 65536));
  const size_t mask = std::bit_ceil(size_t{elements.count} * 2 + 1) - 1;
  table.assign(mask + 1, emptySlot);

  for (uint32_t i = 0; i < elements.count; ++i) {
    const auto bits = bitsOf<components>(elements, i);
    size_t slot = hashOf(bits) & mask;
    while (table[slot] != emptySlot && bitsOf<components>(elements, list.firsts[table[slot]]) != bits)
      slot = (slot + 1) & mask;
    if (table[slot] == emptySlot) {
      table[slot] = list.size();
      list.firsts.push_back(i);
    }
    if (i < list.places.size()) list.places[i] = static_cast<uint16_t>(table[slot]);
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

DistinctLists collectDistinct(Mesh& mesh) {
  SlotTable table;
  auto* vertices = reinterpret_cast<std::byte*>(mesh.vertices.get());
  auto* normals = reinterpret_cast<std::byte*>(mesh.normals.get());
  DistinctLists lists;
  lists.positions = collect<3>({vertices, sizeof(Vertex), mesh.vertexCount}, table);
  lists.normals = collect<3>({normals, sizeof(Vector3), mesh.vertexCount}, table);
  if (vertices != nullptr) vertices += offsetof(Vertex, u);
  lists.textureCoordinates = collect<2>({vertices, sizeof(Vertex), mesh.vertexCount}, table);
  return lists;
}

}  // namespace facet
