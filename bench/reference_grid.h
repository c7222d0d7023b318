#pragma once

#include <cstdint>

#include "model/model.h"

namespace facet {

/// A model of height fields of `columns` x `rows` vertices (at most 65,536) in which all values differ, with
/// one material.
Model gridModel(uint32_t meshes, uint32_t columns, uint32_t rows);

}  // namespace facet
