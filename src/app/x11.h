#pragma once

#include "platform/desktop.h"

// What the window asks of an X server and Qt does not pass on. Without one (Wayland, offscreen) nothing is
// known and nothing is set.

namespace facet {

/// The lock keys that are on: bit 0 Caps Lock, 1 Num Lock, 2 Scroll Lock.
unsigned lockKeys();

/// False when the keyboard's current layout gives no Latin letter.
bool layoutHasLatinLetters();

/// Sets the ramp of every display in use; ramps of other lengths than 256 at the nearest places. False when
/// none has one.
bool setDisplayGammaRamp(const GammaRamp& ramp);

}  // namespace facet
