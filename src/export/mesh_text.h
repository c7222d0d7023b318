#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "export/text_buffer.h"
#include "model/model.h"
#include "platform/output.h"

// A file's text is made in pieces on all cores and written in order. Each core holds one piece at a time, so
// memory does not grow with the file. Small models stay on the calling thread: they are done before another
// one has started. What a piece throws reaches the caller once all threads have ended.

namespace facet {

/// Makes one piece of a text. Jobs are begun in their order but run at the same time.
using TextJob = std::function<void(TextBuffer&)>;

/// Writes the pieces that `next` gives, until it gives none or the output has failed.
void writePieces(const Model& model, Output& out, const std::function<TextJob()>& next);

/// Writes the texts of all meshes where a mesh cannot be cut: a piece is one mesh, or several small ones.
/// `format` gets the first mesh and the one behind the last.
void writeMeshTexts(const Model& model, Output& out,
                    const std::function<void(uint32_t first, uint32_t end, TextBuffer& text)>& format);

/// A mesh and its number in the model.
struct MeshRef {
  const Model& model;
  const Mesh& mesh;
  uint32_t number;
};

/// One list in a mesh's text: what stands before it, and its items. Either may be none.
struct MeshSection {
  void (*head)(const MeshRef& mesh, TextBuffer& text);
  uint32_t (*itemCount)(const Mesh& mesh);
  void (*items)(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text);
};

/// Writes the sections of mesh 0, then those of mesh 1 ... A piece is a run of items, also across meshes.
void writeMeshSections(const Model& model, Output& out, std::span<const MeshSection> sections);

}  // namespace facet
