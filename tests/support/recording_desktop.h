#pragma once

#include <string>
#include <vector>

#include "platform/desktop.h"

namespace facet {

/// A desktop that shows nothing and keeps what it was asked to show. It is the current one while it lives.
class RecordingDesktop : public Desktop {
 public:
  struct Box {
    std::string text, caption;
    unsigned flags;
    bool operator==(const Box&) const = default;
  };

  RecordingDesktop() : previous_(setDesktop(this)) {}
  ~RecordingDesktop() override { setDesktop(previous_); }
  RecordingDesktop(const RecordingDesktop&) = delete;
  RecordingDesktop& operator=(const RecordingDesktop&) = delete;

  MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) override {
    boxes.push_back({std::string(text), std::string(caption), flags});
    return (flags & MB_YESNO) != 0 ? questionAnswer : IDOK;
  }
  void setStatusText(std::string_view text) override { status.emplace_back(text); }
  void setWindowTitle(std::string_view text) override { titles.emplace_back(text); }

  std::vector<Box> boxes;
  std::vector<std::string> status;
  std::vector<std::string> titles;
  MessageBoxAnswer questionAnswer = IDNO;

 private:
  Desktop* previous_;
};

}  // namespace facet
