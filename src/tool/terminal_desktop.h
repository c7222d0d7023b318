#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/desktop.h"

namespace facet {

/// What one load said: status lines and message boxes, in order.
struct Transcript {
  std::vector<std::string> status;
  std::vector<std::pair<std::string, std::string>> messages;  ///< text, caption
};

/// The desktop of the command line: nothing is shown; what is said on a thread goes into the transcript that
/// this thread has opened, so that models loading in parallel keep their words apart.
class TerminalDesktop : public Desktop {
 public:
  MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) override;
  void setStatusText(std::string_view text) override;
  void setWindowTitle(std::string_view) override {}

  MessageBoxAnswer questionAnswer = IDNO;  ///< to every question with yes and no, which is not kept
};

/// Collects what the calling thread says while it lives. One at a time for each thread.
class TranscriptScope {
 public:
  explicit TranscriptScope(Transcript& transcript);
  ~TranscriptScope();
  TranscriptScope(const TranscriptScope&) = delete;
  TranscriptScope& operator=(const TranscriptScope&) = delete;
};

}  // namespace facet
