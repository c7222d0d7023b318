#pragma once

#include <iosfwd>

namespace facet {

/// Measures every reader on the same mesh and prints a Markdown table.
void benchFormats(std::ostream& out);

}  // namespace facet
