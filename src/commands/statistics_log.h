#pragma once

#include <string>

#include "import/load.h"
#include "model/model.h"

namespace facet {

/// The statistics of a model as text: totals, own materials with their flags and whether their texture was
/// found, and memory estimates. Counts and products are 32-bit and wrap. Lines end with a line feed.
std::string statisticsLog(const Model& model, const BasePaths& basePaths);

/// The command "Dump object.log": writes the statistics to "object.log" in the current directory and shows
/// "object.log created"; the status line tells when not all could be written. False, showing nothing, when
/// the file cannot be created.
bool writeStatisticsLog(const Model& model, const BasePaths& basePaths);

}  // namespace facet
