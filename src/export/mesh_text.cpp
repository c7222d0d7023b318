#include "export/mesh_text.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>

#include "platform/crew.h"

namespace facet {

namespace {

/// Items of a section in one piece: a text that fits a core's cache.
constexpr uint32_t itemsPerPiece = 2048;

/// Hands out jobs and lets their texts into the output one after another.
class PieceLine {
 public:
  PieceLine(Output& out, const std::function<TextJob()>& next) : out_(out), next_(next) {}

  /// Works until nothing is left; run by each thread.
  void work() {
    try {
      TextBuffer text;
      for (uint64_t number = 0;;) {
        const TextJob job = take(number);
        if (!job.run) return;
        text.clear();
        job.run(text);
        if (!job.hasText) continue;
        if (!awaitTurn(number)) return;
        out_.write(text.view());
        passTurn();
      }
    } catch (...) {
      stop();
      throw;
    }
  }

 private:
  TextJob take(uint64_t& number) {
    const std::lock_guard lock(mutex_);
    if (stopped_) return {};
    TextJob job = next_();
    if (job.hasText) number = begun_++;
    return job;
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

  void stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    turn_.notify_all();
  }

  Output& out_;
  const std::function<TextJob()>& next_;
  std::mutex mutex_;
  std::condition_variable turn_;
  uint64_t begun_ = 0, written_ = 0;
  bool stopped_ = false;
};

/// Goes on from `place` over one piece's items (an empty section counts as one) and calls
/// visit(mesh number, section, first, end) for each run of items. Returns where it stopped.
template <class Visit>
SectionPlace walkPiece(const Model& model, std::span<const MeshSection> sections, SectionPlace place,
                       Visit visit) {
  uint32_t left = itemsPerPiece;
  while (left > 0 && place.mesh < model.meshCount) {
    const MeshSection& section = sections[place.section];
    const uint32_t count = section.items == nullptr ? 0 : section.itemCount(model.meshes[place.mesh]);
    const uint32_t end = place.item + std::min(count - place.item, left);
    visit(place.mesh, section, place.item, end);
    left -= std::min(left, std::max(end - place.item, 1U));
    place.item = end;
    if (end < count) continue;
    place.item = 0;
    if (++place.section == sections.size()) place = {.mesh = place.mesh + 1};
  }
  return place;
}

}  // namespace

void writePieces(unsigned threads, Output& out, const std::function<TextJob()>& next) {
  PieceLine line(out, next);
  runCrew(threads, [&line](size_t) { line.work(); });
}

SectionPlace pieceEnd(const Model& model, std::span<const MeshSection> sections, SectionPlace first) {
  return walkPiece(model, sections, first, [](auto&&...) {});
}

void putPiece(const Model& model, std::span<const MeshSection> sections, SectionPlace first,
              const std::function<const NumberedLists*(uint32_t mesh)>& listsOf, TextBuffer& text) {
  walkPiece(model, sections, first,
            [&](uint32_t number, const MeshSection& section, uint32_t begin, uint32_t end) {
              const MeshRef mesh{model, model.meshes[number], number, listsOf(number)};
              if (begin == 0 && section.head != nullptr) section.head(mesh, text);
              if (begin < end) section.items(mesh, begin, end, text);
            });
}

void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections) {
  SectionPlace place;
  writePieces(usefulThreads(model), out, [&]() -> TextJob {
    if (place.mesh == model.meshCount) return {};
    const SectionPlace first = place;
    place = pieceEnd(model, sections, place);
    const auto noLists = [](uint32_t) -> const NumberedLists* { return nullptr; };
    return {[&model, sections, first, noLists](TextBuffer& text) {
      putPiece(model, sections, first, noLists, text);
    }};
  });
}

}  // namespace facet
