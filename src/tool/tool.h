#pragma once

namespace facet {

/// The program `facetbench`. Exit status: 0 all well, 1 some input failed, 2 wrong usage.
int runTool(int argc, const char* const* argv);

}  // namespace facet
