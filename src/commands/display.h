#pragma once

#include <string>

#include "commands/viewer.h"
#include "platform/desktop.h"

namespace facet {

/// The gamma after this one: 0.1 more, and from 3.0 back to 1.0.
float nextGamma(float gamma);

/// The ramp of a gamma above 0, equal for the three channels. 1.0 gives 0, 256, .. 65280.
GammaRamp rampOfGamma(float gamma);

/// Steps the view's gamma and sets the display's ramp to it.
void changeGamma(ModelView& view);

/// Identity and capabilities of the graphics adapter; lines end with a carriage return.
std::string systemInformation(IDirect3D9& direct3D, IDirect3DDevice9& device);

/// Shows the system information of the view's device in a box.
void showSystemInformation(const ModelView& view);

/// Makes the main window maximised, without bars and borders; or gives them back, in the normal size.
void toggleFullscreen(Viewer& viewer);

}  // namespace facet
