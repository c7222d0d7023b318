#pragma once

#include <QApplication>
#include <memory>

#include "app/command_line.h"
#include "app/main_frame.h"
#include "app/qt_desktop.h"

namespace facet {

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
