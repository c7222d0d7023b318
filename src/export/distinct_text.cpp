#include "export/distinct_text.h"

#include <deque>
#include <exception>
#include <future>
#include <memory>
#include <utility>
#include <vector>

namespace facet {

namespace {

/// Vertices and indices of the meshes whose lists one job collects.
constexpr uint64_t elementsPerJob = 8192;

using Lists = std::shared_future<NumberedLists>;
using ListsPromise = std::promise<NumberedLists>;

ListNumbers numbersBehind(const NumberedLists& mesh) {
  return {mesh.before.positions + mesh.lists.positions.size(),
          mesh.before.normals + mesh.lists.normals.size(),
          mesh.before.textureCoordinates + mesh.lists.textureCoordinates.size()};
}

/// Keeps the promises of the meshes from `first` on. `before` are the lists of the mesh before them, or none
/// for mesh 0. A failure is what those who wait for the lists get.
void keepPromises(Model& model, uint32_t first, std::vector<ListsPromise>& promises, const Lists& before) {
  size_t kept = 0;
  try {
    std::vector<NumberedLists> collected(promises.size());
    for (size_t i = 0; i < promises.size(); ++i)
      collected[i].lists = collectDistinct(model.meshes[first + i]);
    ListNumbers numbers = before.valid() ? numbersBehind(before.get()) : ListNumbers();
    for (NumberedLists& lists : collected) {
      lists.before = numbers;
      numbers = numbersBehind(lists);
      promises[kept].set_value(std::move(lists));
      ++kept;
    }
  } catch (...) {
    for (; kept < promises.size(); ++kept) promises[kept].set_exception(std::current_exception());
  }
}

/// Hands out jobs: lists to collect as long as they are not far enough ahead, else the next piece of text.
class DistinctJobs {
 public:
  DistinctJobs(Model& model, std::span<const MeshSection> sections, uint32_t meshesAhead)
      : model_(model), sections_(sections), meshesAhead_(meshesAhead) {}

  TextJob next() {
    if (place_.mesh == model_.meshCount) return {};
    const SectionPlace end = pieceEnd(model_, sections_, place_);
    if (promised_ < model_.meshCount && promised_ <= uint64_t{end.mesh} + meshesAhead_) return collectJob();
    return textJob(std::exchange(place_, end));
  }

 private:
  TextJob collectJob() {
    const uint32_t first = promised_;
    auto promises = std::make_shared<std::vector<ListsPromise>>();
    const Lists before = last_;
    for (uint64_t elements = 0; promised_ < model_.meshCount && elements < elementsPerJob; ++promised_) {
      const Mesh& mesh = model_.meshes[promised_];
      elements += 1 + uint64_t{mesh.vertexCount} + mesh.indexCount;
      last_ = kept_.emplace_back(promises->emplace_back().get_future().share());
    }
    return {[this, first, promises, before](TextBuffer&) { keepPromises(model_, first, *promises, before); },
            false};
  }

  /// The job of the piece from `first` to place_ takes its meshes' lists along; those of meshes that end in
  /// it are dropped here and live as long as jobs hold them.
  TextJob textJob(SectionPlace first) {
    const uint32_t meshes = place_.mesh - first.mesh + (place_.item != 0 || place_.section != 0 ? 1 : 0);
    std::vector<Lists> lists(kept_.begin(), kept_.begin() + meshes);
    kept_.erase(kept_.begin(), kept_.begin() + (place_.mesh - first.mesh));
    return {[this, first, lists = std::move(lists)](TextBuffer& text) {
      const auto listsOf = [&](uint32_t mesh) { return &lists[mesh - first.mesh].get(); };
      putPiece(model_, sections_, first, listsOf, text);
    }};
  }

  Model& model_;
  std::span<const MeshSection> sections_;
  uint32_t meshesAhead_;
  SectionPlace place_;      // where the next piece of text begins
  uint32_t promised_ = 0;   // meshes before this one have a future
  std::deque<Lists> kept_;  // of the meshes from place_.mesh to promised_
  Lists last_;              // of the mesh before promised_
};

}  // namespace

void writeDistinctSections(Model& model, Output& out, std::span<const MeshSection> sections) {
  const unsigned threads = usefulThreads(model);
  DistinctJobs jobs(model, sections, threads - 1);
  writePieces(threads, out, [&jobs] { return jobs.next(); });
}

}  // namespace facet
