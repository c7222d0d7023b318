#pragma once

#include <QApplication>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/long_work.h"
#include "app/main_frame.h"
#include "platform/desktop.h"

namespace facet {

/// The desktop of the window: boxes and dialogs of Qt, over the main frame once there is one.
class QtDesktop final : public Desktop {
 public:
  /// The frame that status texts, titles and window states go to; none: they are dropped.
  void attach(CMainFrame* frame) { frame_ = frame; }

  /// While set, questions are answered by the choice, and a box that only confirms it is not shown.
  void setDeviceChoice(std::optional<DeviceChoice> choice) { choice_ = choice; }

  /// What the status line was last asked to show, whether there was one or not.
  const std::string& lastStatus() const { return lastStatus_; }

  /// Cancels the work that runs, where that is possible, and what waits for it.
  void cancelLongWork();

  /// Waits until the works that were cancelled have noticed: what they load belongs to a device.
  void awaitCancelled() { cancelled_.clear(); }

  MessageBoxAnswer messageBox(std::string_view text, std::string_view caption, unsigned flags) override;
  void setStatusText(std::string_view text) override;
  void setWindowTitle(std::string_view text) override;
  std::optional<FileDialogResult> openFileDialog(const FileDialogRequest& request) override;
  std::optional<FileDialogResult> saveFileDialog(const FileDialogRequest& request) override;
  void showListAndTree(const ListAndTree& content) override;
  void setBusy(bool busy) override;
  void runLong(const std::function<void()>& work, const std::shared_ptr<Progress>& progress) override;
  void setGammaRamp(const GammaRamp& ramp) override;
  void showBars(bool show) override;
  void decorateFrame(bool decorate) override { decorated_ = decorate; }
  void showFrame(bool maximised) override;

 private:
  void showPendingPicture();
  void lookAfter(LongWork& work);
  void waitAlive(LongWork& work);

  CMainFrame* frame_ = nullptr;
  std::optional<DeviceChoice> choice_;
  std::string lastStatus_;
  bool decorated_ = true;
  std::shared_ptr<Progress> progress_;                ///< of the work that runs, where it can be cancelled
  std::vector<std::unique_ptr<LongWork>> cancelled_;  ///< works that have perhaps not noticed yet
};

/// The program: its desktop and its main window.
class ViewerApp final : public QApplication {
 public:
  ViewerApp(int& argc, char** argv);
  ~ViewerApp() override;

  /// Creates and shows the main window. False when it cannot be created; the user has been told why.
  bool start(const CommandLine& commandLine);

  /// Destroys the main window.
  void stop() { frame_.reset(); }

  CMainFrame& frame() { return *frame_; }

 private:
  QtDesktop desktop_;
  std::unique_ptr<CMainFrame> frame_;
};

}  // namespace facet
