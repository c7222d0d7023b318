#pragma once

#include <cstdint>
#include <optional>

#include "platform/desktop.h"

class QKeyEvent;

// What Qt does not pass on: Windows' codes of keys, and what an X server knows. Without one (Wayland,
// offscreen) no lock key is on and no ramp is set.

namespace facet {

/// The Windows virtual-key code of a key, none for keys without one that the program knows. Which character a
/// key gives with Shift or Ctrl held does not count: Shift and 5 is still the key 5. Under a layout without
/// Latin letters, keys have the codes of a US keyboard; outside X those alone that give a letter.
std::optional<uint32_t> virtualKey(const QKeyEvent& event);

/// The lock keys that are on: bit 0 Caps Lock, 1 Num Lock, 2 Scroll Lock.
unsigned lockKeys();

/// Sets the ramp of every display in use; ramps of other lengths than 256 at the nearest places. False when
/// none has one.
bool setDisplayGammaRamp(const GammaRamp& ramp);

}  // namespace facet
