#include "platform/desktop.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace facet {

namespace {

Desktop* current = nullptr;
thread_local bool isQuiet = false;

/// Leaves out the last bytes when they begin a character of UTF-8 and do not end it.
std::string_view wholeCharacters(std::string_view text) {
  const auto leads = [](char c) { return (c & 0xC0) != 0x80; };
  const size_t last = std::distance(std::find_if(text.rbegin(), text.rend(), leads), text.rend());
  if (last == 0) return text;
  const auto lead = static_cast<unsigned char>(text[last - 1]);
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
  return last - 1 + length > text.size() ? text.substr(0, last - 1) : text;
}

}  // namespace

Desktop* currentDesktop() {
  return current;
}

Desktop* setDesktop(Desktop* desktop) {
  return std::exchange(current, desktop);
}

Quiet::Quiet() : before_(std::exchange(isQuiet, true)) {}

Quiet::~Quiet() {
  isQuiet = before_;
}

MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) {
  if (isQuiet) return (flags & MB_YESNO) != 0 ? IDYES : IDOK;
  if (current != nullptr) return current->messageBox(text, caption, flags);
  return (flags & MB_YESNO) != 0 ? IDNO : IDOK;
}

void runLong(const std::function<void()>& work, const std::shared_ptr<Progress>& progress) {
  if (current != nullptr) return current->runLong(work, progress);
  work();
}

void setWindowTitle(std::string_view text) {
  if (current != nullptr && !isQuiet) current->setWindowTitle(text);
}

void statusPrint(const char* format, ...) {
  if (current == nullptr || isQuiet) return;
  std::array<char, 256> buffer;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
  va_end(arguments);
  if (length < 0) return;
  const bool whole = static_cast<size_t>(length) < buffer.size();
  current->setStatusText(whole ? std::string_view(buffer.data()) : wholeCharacters(buffer.data()));
}

}  // namespace facet
