#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>
#include <vector>

// The subcommands of facetbench. Each sets its options up on a parser of its own and returns what runs once
// they are parsed; what that returns is the exit status.

namespace facet {

using RunCommand = std::function<int()>;

RunCommand setUpConvert(CLI::App& app);
RunCommand setUpInfo(CLI::App& app);
RunCommand setUpLog(CLI::App& app);
RunCommand setUpRender(CLI::App& app);
RunCommand setUpTexture(CLI::App& app);

/// The option --textures.
void addTextures(CLI::App& app, std::vector<std::string>& textures);

/// One line about wrong usage; returns the exit status for it.
int usageError(std::string_view command, std::string_view reason);

/// The program `facetbench`. Exit status: 0 all well, 1 some input failed, 2 wrong usage.
int runTool(int argc, const char* const* argv);

}  // namespace facet
