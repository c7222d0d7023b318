#pragma once

#include "export/export.h"

// One writer for each output format.

namespace facet {

WriteModel exportObj;

}  // namespace facet
