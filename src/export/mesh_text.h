#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "export/snap.h"
#include "export/text_buffer.h"
#include "model/model.h"
#include "platform/output.h"

// A file's text is made in pieces on all cores and written in order. Each core holds one piece at a time, so
// memory does not grow with the file, and a piece fits a core's cache. Small models stay on the calling
// thread: they are done before another one has started. What a piece throws reaches the caller once all
// threads have ended.

namespace facet {

/// Makes one piece of a text.
using MakeText = std::function<void(TextBuffer&)>;

/// Writes the pieces that `next` gives, until it gives none or the output has failed. `next` is called by one
/// thread at a time.
void writePieces(size_t threads, Output& out, const std::function<MakeText()>& next);

/// Numbers of entries in the three lists of distinct values.
struct ListNumbers {
  uint64_t positions = 0, normals = 0, textureCoordinates = 0;
};

/// A mesh's lists and how many entries those of all earlier meshes have.
struct NumberedLists {
  DistinctLists lists;
  ListNumbers before;
};

/// A mesh, its number in the model, and its lists of distinct values in the formats that print those.
struct MeshRef {
  const Model& model;
  const Mesh& mesh;
  uint32_t number;
  const NumberedLists* lists = nullptr;
};

/// One list in a mesh's text: what stands before it, and its items. Either may be none.
struct MeshSection {
  void (*head)(const MeshRef& mesh, TextBuffer& text);
  uint32_t (*itemCount)(const Mesh& mesh);
  void (*items)(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text);
};

/// Meshes first .. end - 1 of a model, with the lists of each or without any.
struct MeshRange {
  const Model& model;
  uint32_t first, end;
  std::span<const NumberedLists> lists;
};

/// Writes the sections of the first mesh, then those of the second ... A piece is a run of items, also across
/// meshes.
void writeMeshSections(const MeshRange& range, Output& out, std::span<const MeshSection> sections);
void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections);

}  // namespace facet
