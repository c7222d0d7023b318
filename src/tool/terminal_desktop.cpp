#include "tool/terminal_desktop.h"

namespace facet {

namespace {
thread_local Transcript* currentTranscript = nullptr;
}

void TerminalDesktop::messageBox(std::string_view text, std::string_view caption, unsigned) {
  if (currentTranscript != nullptr) currentTranscript->messages.emplace_back(text, caption);
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
