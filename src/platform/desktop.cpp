#include "platform/desktop.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace facet {

namespace {
Desktop* current = nullptr;
}

Desktop* currentDesktop() {
  return current;
}

Desktop* setDesktop(Desktop* desktop) {
  return std::exchange(current, desktop);
}

MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) {
  if (current != nullptr) return current->messageBox(text, caption, flags);
  return (flags & MB_YESNO) != 0 ? IDNO : IDOK;
}

void setWindowTitle(std::string_view text) {
  if (current != nullptr) current->setWindowTitle(text);
}

void statusPrint(const char* format, ...) {
  if (current == nullptr) return;
  std::array<char, 256> buffer;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
  va_end(arguments);
  if (length < 0) return;
  current->setStatusText({buffer.data(), std::min<size_t>(length, buffer.size() - 1)});
}

}  // namespace facet
