#include "app/viewer_app.h"

#include <clocale>

#include "app/icons.h"

namespace facet {

ViewerApp::ViewerApp(int& argc, char** argv) : QApplication(argc, argv) {
  std::setlocale(LC_NUMERIC, "C");  // logs and dialogs have decimal points everywhere
  setAttribute(Qt::AA_DontShowIconsInMenus);
  setDesktop(&desktop_);
  setApplicationName("vxmviewer");
  setDesktopFileName("io.github.facetbench.vxmviewer");
  setWindowIcon(applicationIcon());
}

ViewerApp::~ViewerApp() {
  stop();
  setDesktop(nullptr);
}

bool ViewerApp::start(const CommandLine& commandLine) {
  stop();
  desktop_.setDeviceChoice(commandLine.device);
  frame_ = std::make_unique<CMainFrame>(desktop_, commandLine);
  const bool created = frame_->create();
  desktop_.setDeviceChoice({});
  if (!created) return false;
  frame_->show();
  return true;
}

}  // namespace facet
