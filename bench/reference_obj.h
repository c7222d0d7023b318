#pragma once

#include <cstdio>

#include "model/model.h"

namespace facet {

/// The plain way to an OBJ file: fprintf for every line, lists of distinct values by std::unordered_map,
/// snapping through the text and back. What the writer is measured against.
void writeReferenceObj(Model& model, const char* fileName, std::FILE* file);

}  // namespace facet
