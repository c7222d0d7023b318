#include "commands/format.h"

#include <cstdarg>
#include <cstdio>

namespace facet {

std::string formatted(const char* format, ...) {
  va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  va_end(arguments);
  std::string text(length > 0 ? length : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);  // the NUL falls on the string's own
  va_end(again);
  return text;
}

}  // namespace facet
