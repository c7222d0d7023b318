#pragma once

#include <iosfwd>

namespace facet {

/// Measures the writers and prints Markdown tables. Throws std::runtime_error when two ways to the same file
/// give different bytes.
void benchExport(std::ostream& out);

}  // namespace facet
