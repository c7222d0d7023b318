#pragma once

#include <iosfwd>
#include <string>

namespace facet {

/// Measures loading and prints Markdown tables; `tool` is the path of the program `facetbench`.
void benchLoad(std::ostream& out, const std::string& tool);

}  // namespace facet
