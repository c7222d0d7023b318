#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/desktop.h"

namespace facet {

/// Exit status of the program.
enum ExitStatus : int { exitSuccess = 0, exitFailure = 1, exitUsage = 2 };

/// One line on standard error, a failure or a warning: "facetbench: PATH: text". Safe on several threads.
void report(std::string_view path, std::string_view text);

/// One line or document on standard output, whole on several threads.
void printOut(std::string_view text);

/// True when standard error is a terminal that a person watches.
bool errorIsTerminal();

/// A progress bar on standard error that the next one overwrites; `done` = `total` ends its line.
void showProgress(size_t done, size_t total, std::string_view name);

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
