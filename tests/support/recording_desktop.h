#pragma once

#include <deque>
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

  std::optional<FileDialogResult> openFileDialog(const FileDialogRequest& request) override {
    return answer(openRequests, request);
  }
  std::optional<FileDialogResult> saveFileDialog(const FileDialogRequest& request) override {
    return answer(saveRequests, request);
  }
  void showListAndTree(const ListAndTree& texts) override { listsAndTrees.push_back(texts); }
  void setBusy(bool busy) override { windowCalls.emplace_back(busy ? "busy" : "idle"); }
  void showBars(bool shown) override { windowCalls.emplace_back(shown ? "show bars" : "hide bars"); }
  void decorateFrame(bool decorated) override {
    windowCalls.emplace_back(decorated ? "decorate" : "undecorate");
  }
  void showFrame(bool maximised) override { windowCalls.emplace_back(maximised ? "maximise" : "restore"); }

  std::vector<Box> boxes;
  std::vector<std::string> status;
  std::vector<std::string> titles;
  std::vector<FileDialogRequest> openRequests, saveRequests;
  std::vector<ListAndTree> listsAndTrees;
  std::vector<std::string> windowCalls;  ///< what was done to the main window and its cursor, in order
  MessageBoxAnswer questionAnswer = IDNO;
  /// To file dialogs; when used up they are cancelled.
  std::deque<std::optional<FileDialogResult>> fileAnswers;

 private:
  std::optional<FileDialogResult> answer(std::vector<FileDialogRequest>& requests,
                                         const FileDialogRequest& request) {
    requests.push_back(request);
    if (fileAnswers.empty()) return {};
    const auto next = fileAnswers.front();
    fileAnswers.pop_front();
    return next;
  }

  Desktop* previous_;
};

}  // namespace facet
