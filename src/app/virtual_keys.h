#pragma once

#include <cstdint>
#include <optional>

class QKeyEvent;

namespace facet {

/// The Windows virtual-key code of a key, none for keys without one that the program knows. Which character a
/// key gives with Shift or Ctrl held does not count: Shift and 5 is still the key 5. Under a layout without
/// Latin letters, keys have the codes of a US keyboard; outside X those alone that give a letter.
std::optional<uint32_t> virtualKey(const QKeyEvent& event);

}  // namespace facet
