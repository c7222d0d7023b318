#pragma once

#include <iosfwd>

#include "bench.h"

namespace facet {

/// Measures the way from a binary file to OBJ, STL and DAE against the command of the Open Asset Import
/// Library, which gets the same triangles as binary STL. Prints that it was left out where that is not
/// installed.
void benchAgainstAssimp(std::ostream& out, const BenchFolder& folder);

}  // namespace facet
