#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "export/text_buffer.h"
#include "model/model.h"
#include "platform/output.h"

// A file's text is made in pieces on all cores and written in order. Each core holds one piece at a time, so
// memory does not grow with the file, and a piece fits a core's cache. Small models stay on the calling
// thread: they are done before another one has started. What a piece throws reaches the caller once all
// threads have ended.

namespace facet {

/// Makes one piece of a text, or only prepares what later jobs need. Jobs are begun in their order but run at
/// the same time, so one may wait for those before it. No `run` means that nothing is left.
struct TextJob {
  std::function<void(TextBuffer&)> run;
  bool hasText = true;
};

/// Writes the pieces that `next` gives, until it gives none or the output has failed. `next` is called by one
/// thread at a time.
void writePieces(unsigned threads, Output& out, const std::function<TextJob()>& next);

struct NumberedLists;

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

/// A place in the sections of all meshes.
struct SectionPlace {
  uint32_t mesh = 0, section = 0, item = 0;
};

/// The place behind the piece that begins at `first`.
SectionPlace pieceEnd(const Model& model, std::span<const MeshSection> sections, SectionPlace first);

/// Puts the text of the piece that begins at `first`; `listsOf(mesh number)` may give none.
void putPiece(const Model& model, std::span<const MeshSection> sections, SectionPlace first,
              const std::function<const NumberedLists*(uint32_t mesh)>& listsOf, TextBuffer& text);

/// Writes the sections of mesh 0, then those of mesh 1 ... A piece is a run of items, also across meshes.
void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections);

}  // namespace facet
