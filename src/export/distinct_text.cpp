#include "export/distinct_text.h"

#include <vector>

#include "platform/parallel.h"

namespace facet {

namespace {

/// Vertices and indices of the meshes whose lists are in memory at a time, for each thread.
constexpr uint64_t elementsAtATime = 1 << 18;

/// The lists of meshes first .. end - 1, numbered from `numbers` on, which go on behind them.
std::vector<NumberedLists> collectLists(Model& model, uint32_t first, uint32_t end, ListNumbers& numbers) {
  std::vector<NumberedLists> lists(end - first);
  const auto collect = [&](size_t i) { lists[i].lists = collectDistinct(model.meshes[first + i]); };
  parallelFor(lists.size(), collect, usefulThreads(model));
  for (NumberedLists& mesh : lists) {
    mesh.before = numbers;
    numbers.positions += mesh.lists.positions.size();
    numbers.normals += mesh.lists.normals.size();
    numbers.textureCoordinates += mesh.lists.textureCoordinates.size();
  }
  return lists;
}

}  // namespace

void writeDistinctSections(Model& model, Output& out, std::span<const MeshSection> sections) {
  ListNumbers numbers;
  for (uint32_t first = 0, end = 0; first < model.meshCount && out.error().empty(); first = end) {
    for (uint64_t elements = 0; end < model.meshCount && elements < elementsAtATime * threadCount(); ++end)
      elements += 1 + uint64_t{model.meshes[end].vertexCount} + model.meshes[end].indexCount;
    const std::vector<NumberedLists> lists = collectLists(model, first, end, numbers);
    writeMeshSections(MeshRange{model, first, end, lists}, out, sections);
  }
}

}  // namespace facet
