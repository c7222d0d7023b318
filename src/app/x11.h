#pragma once

#include "platform/desktop.h"

// What the window asks of an X server and Qt does not pass on. Without one (Wayland, offscreen) nothing is
// known and nothing is set.

namespace facet {

/// The lock keys that are on: bit 0 Caps Lock, 1 Num Lock, 2 Scroll Lock.
unsigned lockKeys();

/// True when the displays have gamma ramps that can be set.
bool hasGammaRamp();

/// The ramp of the first display in use, straight lines when there is none. Ramps of other lengths than 256
/// are read and set at the nearest places.
GammaRamp displayGammaRamp();

/// Sets the ramp of every display in use.
void setDisplayGammaRamp(const GammaRamp& ramp);

}  // namespace facet
