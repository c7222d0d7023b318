#pragma once

#include <iosfwd>
#include <string>

namespace facet {

/// Measures the time from a model file to a picture file against f3d drawing the same triangles, as whole
/// processes, and prints a Markdown table. `tool` is the path of the program `facetbench`.
void benchPictures(std::ostream& out, const std::string& tool);

}  // namespace facet
