#include "app/viewer_app.h"

#include <clocale>

#include "app/dialogs.h"
#include "app/native.h"
#include "app/pictures.h"
#include "app/view_widget.h"

namespace facet {

/// The texts of a frame that ended in this call's caller are not there yet; the picture is shown without.
void QtDesktop::showPendingPicture() {
  if (frame_) frame_->view().showPicture();
}

MessageBoxAnswer QtDesktop::messageBox(std::string_view text, std::string_view caption, unsigned flags) {
  if (choice_) {
    const bool software = *choice_ == DeviceChoice::ref;
    if ((flags & MB_YESNO) != 0) return software ? IDYES : IDNO;
    if (text.starts_with(software ? "Fallback to REF." : "HAL.")) return IDOK;
  }
  showPendingPicture();
  return runMessageBox(text, caption, flags, frame_ && frame_->isVisible() ? frame_ : nullptr);
}

void QtDesktop::setStatusText(std::string_view text) {
  lastStatus_ = text;
  if (frame_) frame_->printStatus(toQString(text));
}

void QtDesktop::setWindowTitle(std::string_view text) {
  if (frame_) frame_->setWindowTitle(titleText(text));
}

std::optional<FileDialogResult> QtDesktop::openFileDialog(const FileDialogRequest& request) {
  return runFileDialog(request, false, frame_);
}

std::optional<FileDialogResult> QtDesktop::saveFileDialog(const FileDialogRequest& request) {
  return runFileDialog(request, true, frame_);
}

void QtDesktop::showListAndTree(const ListAndTree& content) {
  runListAndTree(content, frame_);
}

void QtDesktop::setBusy(bool busy) {
  if (!busy) return QApplication::restoreOverrideCursor();
  QApplication::setOverrideCursor(Qt::WaitCursor);
  showPendingPicture();  // the model before is gone from the picture while the next one loads
  if (frame_) frame_->view().repaint();
}

void QtDesktop::setGammaRamp(const GammaRamp& ramp) {
  if (!setDisplayGammaRamp(ramp) && frame_) frame_->view().setPictureRamp(ramp);
}

void QtDesktop::showBars(bool show) {
  if (frame_) frame_->showBars(show);
}

void QtDesktop::showFrame(bool maximised) {
  if (!frame_) return;
  if (!maximised)
    frame_->showNormal();
  else if (decorated_)
    frame_->showMaximized();
  else
    frame_->showFullScreen();  // nothing less loses its caption and borders under every window manager
}

ViewerApp::ViewerApp(int& argc, char** argv) : QApplication(argc, argv) {
  std::setlocale(LC_NUMERIC, "C");  // logs and dialogs have decimal points everywhere
  setAttribute(Qt::AA_DontShowIconsInMenus);
  setDesktop(&desktop_);
  setApplicationName("vxmviewer");
  setDesktopFileName("io.github.facetbench.vxmviewer");
  setWindowIcon(themedIcon(applicationIconName));
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
