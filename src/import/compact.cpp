#include "import/compact.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "import/readers.h"

namespace facet {

namespace {

constexpr uint32_t mostVertices = 65535;

uint32_t hashOf(const Vertex& vertex) {
  uint64_t words[3] = {};
  std::memcpy(words, &vertex, sizeof vertex);
  uint64_t hash = 0;
  for (const uint64_t word : words) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15u;
    hash ^= hash >> 32;
  }
  return static_cast<uint32_t>(hash);
}

}  // namespace

void Compactor::begin(size_t sharedCount, size_t mostDistinct) {
  ++meshNumber_;
  if (known_.size() < sharedCount) known_.resize(sharedCount);
  distinct_.clear();
  slots_.assign(std::bit_ceil(2 * mostDistinct + 1), 0);
}

uint16_t Compactor::findOrAdd(const Vertex& vertex) {
  const size_t mask = slots_.size() - 1;
  size_t slot = hashOf(vertex) & mask;
  for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
    const uint32_t position = slots_[slot] - 1;
    if (std::memcmp(&distinct_[position], &vertex, sizeof vertex) == 0)  // NOLINT: equal are equal bits
      return static_cast<uint16_t>(position);
  }
  distinct_.push_back(vertex);
  slots_[slot] = static_cast<uint32_t>(distinct_.size());
  return static_cast<uint16_t>(distinct_.size() - 1);
}

void Compactor::compact(Mesh& mesh, std::span<const Vertex> shared) {
  begin(shared.size(), std::min<size_t>(mesh.indexCount, shared.size()));
  uint32_t kept = 0;
  for (; kept < mesh.indexCount; ++kept) {
    uint16_t& index = mesh.indices[kept];
    if (index >= shared.size()) {
      index = noVertex;
      continue;
    }
    Known& known = known_[index];
    if (known.meshNumber != meshNumber_) {
      known = {meshNumber_, findOrAdd(shared[index])};
      if (distinct_.size() == mostVertices) break;
    }
    index = known.position;
  }
  mesh.indexCount = kept;
  allocateVertices(mesh, static_cast<uint32_t>(distinct_.size()));
  std::copy(distinct_.begin(), distinct_.end(), mesh.vertices.get());
  clearNormals(mesh);
}

}  // namespace facet
