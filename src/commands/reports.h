#pragma once

#include <string>

#include "device/device.h"
#include "import/load.h"
#include "model/model.h"
#include "platform/desktop.h"

// What the commands tell about the model, the graphics adapter and the display.

namespace facet {

/// A model, its materials (those of the sky included) and its meshes with their figures, as texts.
ListAndTree modelData(const Model& model);

/// The statistics of a model as text: totals, own materials with their flags and whether their texture was
/// found, and memory estimates. Counts and products are 32-bit and wrap. Lines end with a line feed.
std::string statisticsLog(const Model& model, const BasePaths& basePaths);

/// The command "Dump object.log": writes the statistics to "object.log" in the current directory and shows
/// "object.log created"; the status line tells when not all could be written. False, showing nothing, when
/// the file cannot be created.
bool writeStatisticsLog(const Model& model, const BasePaths& basePaths);

/// Identity and capabilities of the graphics adapter; lines end with a carriage return.
std::string systemInformation(IDirect3D9& direct3D, IDirect3DDevice9& device);

/// The gamma after this one: 0.1 more, and from 3.0 back to 1.0.
float nextGamma(float gamma);

/// The ramp of a gamma above 0, equal for the three channels. 1.0 gives 0, 256, .. 65280.
GammaRamp rampOfGamma(float gamma);

}  // namespace facet
