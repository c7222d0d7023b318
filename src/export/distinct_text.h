#pragma once

#include <algorithm>
#include <span>
#include <string_view>

#include "export/mesh_text.h"
#include "export/snap.h"

namespace facet {

/// Like writeMeshSections, with lists in every MeshRef. The lists of some meshes at a time are collected
/// on all cores, then their text is written; each mesh is left snapped. Sections of lists count the mesh's
/// vertices as items, and their items are cut at the list's size.
void writeDistinctSections(Model& model, Output& out, std::span<const MeshSection> sections);

/// Calls put(vertex number) for the entries first..end of a list, as many of them as there are.
template <class Put>
void forEntries(const DistinctList& list, uint32_t first, uint32_t end, Put put) {
  const uint32_t last = std::min(end, list.size());
  for (uint32_t i = first; i < last; ++i) put(list.firsts[i]);
}

/// The line above a list: `label`, its size, and the number of vertices that it came from.
inline void putListSize(std::string_view label, const DistinctList& list, const Mesh& mesh,
                        TextBuffer& text) {
  text.put(label, list.size(), ", was ", mesh.vertexCount, '\n');
}

}  // namespace facet
