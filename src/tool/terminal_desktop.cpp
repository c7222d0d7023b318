#include "tool/terminal_desktop.h"

namespace facet {

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
