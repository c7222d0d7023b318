#pragma once

#include <string>

namespace facet {

/// Formats like printf.
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

}  // namespace facet
