#include "export/mesh_text.h"

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace facet {

namespace {

/// Items of a section in one piece: a text that fits a core's cache.
constexpr uint32_t itemsPerPiece = 2048;

/// Vertices and indices that whole meshes are gathered up to.
constexpr uint64_t elementsPerPiece = 8192;

/// Vertices and indices that a further thread must have to do before starting it pays.
constexpr uint64_t elementsPerThread = 50'000;

unsigned usefulThreads(const Model& model) {
  const uint64_t elements = uint64_t{model.totalVertices} + model.totalIndices;
  const unsigned cores = std::max(std::thread::hardware_concurrency(), 1U);
  return static_cast<unsigned>(std::clamp<uint64_t>(elements / elementsPerThread, 1, cores));
}

/// Hands out jobs and lets their texts into the output one after another.
class PieceLine {
 public:
  PieceLine(Output& out, const std::function<TextJob()>& next) : out_(out), next_(next) {}

  /// Works until nothing is left; run by each thread.
  void work() {
    try {
      TextBuffer text;
      for (uint64_t number = 0; TextJob job = take(number);) {
        text.clear();
        job(text);
        if (!awaitTurn(number)) return;
        out_.write(text.view());
        passTurn();
      }
    } catch (...) {
      stop(std::current_exception());
    }
  }

  void rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  TextJob take(uint64_t& number) {
    const std::lock_guard lock(mutex_);
    if (stopped_) return {};
    number = begun_++;
    return next_();
  }

  bool awaitTurn(uint64_t number) {
    std::unique_lock lock(mutex_);
    turn_.wait(lock, [&] { return stopped_ || written_ == number; });
    return !stopped_;
  }

  void passTurn() {
    const std::lock_guard lock(mutex_);
    ++written_;
    if (!out_.error().empty()) stopped_ = true;
    turn_.notify_all();
  }

  void stop(std::exception_ptr failure) {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    if (!failure_) failure_ = std::move(failure);
    turn_.notify_all();
  }

  Output& out_;
  const std::function<TextJob()>& next_;
  std::mutex mutex_;
  std::condition_variable turn_;
  uint64_t begun_ = 0, written_ = 0;
  bool stopped_ = false;
  std::exception_ptr failure_;
};

/// A place in the sections of all meshes.
struct Place {
  uint32_t mesh = 0, section = 0, item = 0;
};

/// Goes on from `place` over `limit` items (an empty section counts as one) and calls
/// visit(mesh, section, first, end) for each run of items. Returns where it stopped.
template <class Visit>
Place walkSections(const Model& model, std::span<const MeshSection> sections, Place place, uint32_t limit,
                   Visit visit) {
  while (limit > 0 && place.mesh < model.meshCount) {
    const MeshSection& section = sections[place.section];
    const uint32_t count = section.items == nullptr ? 0 : section.itemCount(model.meshes[place.mesh]);
    const uint32_t end = place.item + std::min(count - place.item, limit);
    visit(MeshRef{model, model.meshes[place.mesh], place.mesh}, section, place.item, end);
    limit -= std::min(limit, std::max(end - place.item, 1U));
    place.item = end;
    if (end < count) continue;
    place.item = 0;
    if (++place.section == sections.size()) place = {.mesh = place.mesh + 1};
  }
  return place;
}

}  // namespace

void writePieces(const Model& model, Output& out, const std::function<TextJob()>& next) {
  PieceLine line(out, next);
  std::vector<std::jthread> helpers;
  try {
    while (helpers.size() + 1 < usefulThreads(model)) helpers.emplace_back([&line] { line.work(); });
  } catch (const std::system_error&) {
    // Fewer threads do the same work.
  }
  line.work();
  helpers.clear();
  line.rethrow();
}

void writeMeshTexts(const Model& model, Output& out,
                    const std::function<void(uint32_t first, uint32_t end, TextBuffer& text)>& format) {
  uint32_t taken = 0;
  writePieces(model, out, [&]() -> TextJob {
    if (taken == model.meshCount) return {};
    const uint32_t first = taken;
    for (uint64_t elements = 0; taken < model.meshCount && elements < elementsPerPiece; ++taken)
      elements += 1 + uint64_t{model.meshes[taken].vertexCount} + model.meshes[taken].indexCount;
    return [&format, first, end = taken](TextBuffer& text) { format(first, end, text); };
  });
}

void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections) {
  Place place;
  writePieces(model, out, [&]() -> TextJob {
    if (place.mesh == model.meshCount) return {};
    const Place first = place;
    place = walkSections(model, sections, place, itemsPerPiece, [](auto&&...) {});
    return [&model, sections, first](TextBuffer& text) {
      walkSections(model, sections, first, itemsPerPiece,
                   [&](const MeshRef& mesh, const MeshSection& section, uint32_t begin, uint32_t end) {
                     if (begin == 0 && section.head != nullptr) section.head(mesh, text);
                     if (begin < end) section.items(mesh, begin, end, text);
                   });
    };
  });
}

}  // namespace facet
