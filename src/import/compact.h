#pragma once

#include <span>
#include <vector>

#include "model/model.h"

namespace facet {

/// An index that is out of range in every compacted mesh.
inline constexpr uint16_t noVertex = 65535;

/// Gives meshes their own vertices. One object serves many meshes and keeps its working memory.
class Compactor {
 public:
  /// `mesh.indices` name records of `shared` and become indices into the mesh's new vertices: the distinct
  /// records (by their bit patterns) in the order of first appearance. An index that names no record becomes
  /// noVertex. The index that brings the 65535th vertex is dropped, and all after it. Normals are 0.
  void compact(Mesh& mesh, std::span<const Vertex> shared);

 private:
  void begin(size_t sharedCount, size_t mostDistinct);
  uint16_t findOrAdd(const Vertex& vertex);

  /// Where a shared record went; it counts only for the mesh whose number it bears.
  struct Known {
    uint32_t meshNumber = 0;
    uint16_t position = 0;
  };
  std::vector<Known> known_;
  uint32_t meshNumber_ = 0;
  std::vector<uint32_t> slots_;  // open addressing: 0 is free, else 1 + a position in distinct_
  std::vector<Vertex> distinct_;
};

}  // namespace facet
