#pragma once

#include <cstdint>
#include <functional>

#include "export/text_buffer.h"
#include "model/model.h"
#include "platform/output.h"

namespace facet {

/// Formats the meshes of a model on all cores and writes their texts in mesh order. `format(mesh index, text)`
/// is called once for each mesh, for several meshes at a time, but begun in mesh order. At any time at most one
/// mesh's text per core is held.
void writeMeshTexts(const Model& model, Output& out,
                    const std::function<void(uint32_t mesh, TextBuffer& text)>& format);

/// A corner's vertex as the writers print it: zeros for an index at or above vertexCount.
struct Corner {
  Vertex vertex;
  Vector3 normal;
};
Corner cornerAt(const Mesh& mesh, uint16_t index);

}  // namespace facet
