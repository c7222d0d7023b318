#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace facet {

/// Exit status of the program.
enum ExitStatus : int { exitSuccess = 0, exitFailure = 1, exitUsage = 2 };

/// One line on standard error, a failure or a warning: "facetbench: PATH: text". Safe on several threads.
void report(std::string_view path, std::string_view text);

/// One line or document on standard output, whole on several threads.
void printOut(std::string_view text);

/// True when standard error is a terminal that a person watches.
bool errorIsTerminal();

/// A progress bar on standard error that the next one overwrites; `done` = `total` ends its line.
void showProgress(size_t done, size_t total, std::string_view name);

}  // namespace facet
