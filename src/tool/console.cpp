#include "tool/console.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "platform/system.h"

namespace facet {

namespace {

std::mutex consoleMutex;

}  // namespace

void report(std::string_view path, std::string_view text) {
  const std::string line = "facetbench: " + std::string(path) + ": " + std::string(text) + "\n";
  const std::lock_guard lock(consoleMutex);
  if (errorIsTerminal()) std::fputs("\r\033[K", stderr);
  std::fwrite(line.data(), 1, line.size(), stderr);
}

void printOut(std::string_view text) {
  const std::lock_guard lock(consoleMutex);
  std::fwrite(text.data(), 1, text.size(), stdout);
}

bool errorIsTerminal() {
  return isTerminal(stderr);
}

void showProgress(size_t done, size_t total, std::string_view name) {
  constexpr size_t width = 30;
  const size_t filled = total == 0 ? width : width * done / total;
  const std::string bar = std::string(filled, '#') + std::string(width - filled, '.');
  const std::lock_guard lock(consoleMutex);
  std::fprintf(stderr, "\r\033[K[%s] %zu/%zu %.*s%s", bar.c_str(), done, total,
               static_cast<int>(std::min<size_t>(name.size(), 36)), name.data(), done == total ? "\n" : "");
  std::fflush(stderr);
}

namespace {
thread_local Transcript* currentTranscript = nullptr;
}

MessageBoxAnswer TerminalDesktop::messageBox(std::string_view text, std::string_view caption,
                                             unsigned flags) {
  if ((flags & MB_YESNO) != 0) return questionAnswer;
  if (currentTranscript != nullptr) currentTranscript->messages.emplace_back(text, caption);
  return IDOK;
}

void TerminalDesktop::setStatusText(std::string_view text) {
  if (currentTranscript != nullptr) currentTranscript->status.emplace_back(text);
}

TranscriptScope::TranscriptScope(Transcript& transcript) {
  currentTranscript = &transcript;
}

TranscriptScope::~TranscriptScope() {
  currentTranscript = nullptr;
}

}  // namespace facet
