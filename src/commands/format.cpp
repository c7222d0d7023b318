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
  std::string text(length + 1, '\0');
  std::vsnprintf(text.data(), text.size(), format, again);
  va_end(again);
  text.pop_back();  // the NUL
  return text;
}

}  // namespace facet
