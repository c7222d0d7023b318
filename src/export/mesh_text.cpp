#include "export/mesh_text.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/parallel.h"

namespace facet {

uint32_t wholeIndexCount(const Mesh& mesh) {
  const uint32_t all = triangleCount(mesh) * 3;
  uint16_t highest = 0;
  for (uint32_t k = 0; k < all; ++k) highest = std::max(highest, mesh.indices[k]);
  if (highest < mesh.vertexCount) return all;
  uint32_t count = 0;
  forWholeTriangles(mesh, 0, triangleCount(mesh), [&](uint16_t, uint16_t, uint16_t) { count += 3; });
  return count;
}

bool hasWholeTriangle(const Mesh& mesh) {
  for (uint32_t t = 0; t < triangleCount(mesh); ++t) {
    const uint16_t* corners = &mesh.indices[size_t{t} * 3];
    if (std::max({corners[0], corners[1], corners[2]}) < mesh.vertexCount) return true;
  }
  return false;
}

namespace {

/// The text of one piece: it fits a core's cache, and threads seldom wait for their turn.
constexpr size_t pieceBytes = 320 * size_t{1024};
constexpr uint32_t fewestItems = 512, mostItems = 32768;

/// A place in the sections of all meshes.
struct SectionPlace {
  uint32_t mesh = 0, section = 0, item = 0;
};

/// Goes on from `place` over `left` items (an empty section counts as one) and calls
/// visit(mesh number, section, first, end) for each run of items. Returns where it stopped.
template <class Visit>
SectionPlace walkPiece(const MeshRange& range, std::span<const MeshSection> sections, SectionPlace place,
                       uint32_t left, Visit visit) {
  while (left > 0 && place.mesh < range.end) {
    const Mesh& mesh = range.model.meshes[place.mesh];
    if (range.scene != nullptr && place.section == 0 && place.item == 0 && !hasWholeTriangle(mesh)) {
      place = {.mesh = place.mesh + 1};
      --left;
      continue;
    }
    const MeshSection& section = sections[place.section];
    const uint32_t count = section.items == nullptr ? 0 : section.itemCount(mesh);
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

void writePieces(size_t threads, Output& out, const std::function<MakeText()>& next) {
  struct Piece {
    MakeText make;
    TextBuffer text;
  };
  orderedPipeline<Piece>(
      threads,
      [&](Piece& piece) {
        piece.make = next();
        return static_cast<bool>(piece.make);
      },
      [](Piece& piece) {
        piece.text.clear();
        piece.make(piece.text);
      },
      [&](Piece& piece) {
        out.write(piece.text.view());
        return out.error().empty();
      });
}

void writeMeshSections(const MeshRange& range, Output& out, std::span<const MeshSection> sections) {
  SectionPlace place{.mesh = range.first};
  std::atomic<uint32_t> itemsPerPiece = 2048;  // for lines as long as those of the last piece
  writePieces(usefulThreads(range.model), out, [&]() -> MakeText {
    if (place.mesh >= range.end) return {};
    const SectionPlace first = place;
    const uint32_t items = itemsPerPiece;
    place = walkPiece(range, sections, first, items, [](auto&&...) {});
    return [&range, &itemsPerPiece, sections, first, items](TextBuffer& text) {
      walkPiece(range, sections, first, items,
                [&](uint32_t number, const MeshSection& section, uint32_t begin, uint32_t end) {
                  const MeshRef mesh{range.model, range.model.meshes[number], number,
                                     range.lists.empty() ? nullptr : &range.lists[number - range.first],
                                     range.scene};
                  if (begin == 0 && section.head != nullptr) section.head(mesh, text);
                  if (begin < end) section.items(mesh, begin, end, text);
                });
      const size_t fits = pieceBytes * items / std::max<size_t>(text.size(), 1);
      itemsPerPiece = static_cast<uint32_t>(std::clamp<size_t>(fits, fewestItems, mostItems));
    };
  });
}

void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections) {
  writeMeshSections(MeshRange{model, 0, model.meshCount, {}}, out, sections);
}

namespace {

/// Vertices and indices of the meshes whose lists are in memory at a time, for each thread.
constexpr uint64_t elementsAtATime = 1 << 19;

/// The lists of meshes first .. end - 1, numbered from `numbers` on, which go on behind them.
std::vector<NumberedLists> collectLists(Model& model, uint32_t first, uint32_t end, bool wholeOnly,
                                        ListNumbers& numbers) {
  std::vector<NumberedLists> lists(end - first);
  const auto collect = [&](size_t i) {
    Mesh& mesh = model.meshes[first + i];
    if (!wholeOnly || hasWholeTriangle(mesh)) lists[i].lists = collectDistinct(mesh);
  };
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

void writeDistinctSections(Model& model, Output& out, std::span<const MeshSection> sections,
                           const ModernScene* scene) {
  ListNumbers numbers;
  for (uint32_t first = 0, end = 0; first < model.meshCount && out.error().empty(); first = end) {
    for (uint64_t elements = 0; end < model.meshCount && elements < elementsAtATime * threadCount(); ++end)
      elements += 1 + uint64_t{model.meshes[end].vertexCount} + model.meshes[end].indexCount;
    const std::vector<NumberedLists> lists = collectLists(model, first, end, scene != nullptr, numbers);
    writeMeshSections(MeshRange{model, first, end, lists, scene}, out, sections);
  }
}

}  // namespace facet
