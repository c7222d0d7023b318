#include "app/viewer_app.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QShortcut>
#include <QTimer>
#include <clocale>
#include <system_error>

#include "app/dialogs.h"
#include "app/native.h"
#include "app/pictures.h"
#include "app/view_widget.h"
#include "platform/progress.h"

namespace facet {

/// The texts of a frame that ended in this call's caller are not there yet; the picture is shown without.
void QtDesktop::showPendingPicture() {
  if (frame_) frame_->view().showPicture();
}

MessageBoxAnswer QtDesktop::messageBox(std::string_view text, std::string_view caption, unsigned flags) {
  if (LongWork* work = LongWork::ofThisThread())
    return work->messageBox({std::string(text), std::string(caption), flags});
  if (choice_) {
    const bool software = *choice_ == DeviceChoice::ref;
    if ((flags & MB_YESNO) != 0) return software ? IDYES : IDNO;
    if (text.starts_with(software ? "Fallback to REF." : "HAL.")) return IDOK;
  }
  showPendingPicture();
  return runMessageBox(text, caption, flags, frame_ && frame_->isVisible() ? frame_ : nullptr);
}

void QtDesktop::setStatusText(std::string_view text) {
  if (LongWork* work = LongWork::ofThisThread()) return work->setStatus(text);
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
  if (LongWork::ofThisThread()) return;  // whoever began the work has set the cursor
  if (!busy) return QApplication::restoreOverrideCursor();
  QApplication::setOverrideCursor(Qt::WaitCursor);
}

// Long works.

/// Passes on what the work has to say.
void QtDesktop::lookAfter(LongWork& work) {
  if (const auto status = work.takeStatus()) setStatusText(*status);
  work.answerBox([&](const BoxRequest& box) { return messageBox(box.text, box.caption, box.flags); });
}

/// Returns when the work has ended or was cancelled, or the program ends. Events are handled meanwhile.
void QtDesktop::waitAlive(LongWork& work) {
  constexpr int interval = 5, untilShown = 300;  // ms
  QEventLoop loop;
  QTimer tick;
  QElapsedTimer passed;
  passed.start();
  QShortcut escape(Qt::Key_Escape, frame_);
  QObject::connect(&escape, &QShortcut::activated, &loop, [this] { cancelLongWork(); });
  QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
    lookAfter(work);
    if (passed.elapsed() >= untilShown) frame_->showProgress(progress_.get());
    if (work.endsWithin(std::chrono::milliseconds(0)) || (progress_ && progress_->cancelled())) loop.quit();
  });
  tick.start(interval);
  loop.exec();
  frame_->hideProgress();
}

void QtDesktop::runLong(const std::function<void()>& work, const std::shared_ptr<Progress>& progress) {
  if (!frame_ || !frame_->isVisible() || LongWork::ofThisThread()) return work();
  constexpr std::chrono::milliseconds unnoticed(20);
  std::erase_if(cancelled_,
                [](const auto& other) { return other->endsWithin(std::chrono::milliseconds(0)); });
  std::unique_ptr<LongWork> running;
  try {
    running = std::make_unique<LongWork>(work);
  } catch (const std::system_error&) {  // no more threads to be had
    return work();
  }
  progress_ = progress;
  if (!running->endsWithin(unnoticed)) waitAlive(*running);
  progress_ = nullptr;
  if (progress && !running->endsWithin(std::chrono::milliseconds(0))) {
    progress->cancel();  // if the program ends, it was not yet
    running->abandon();
    cancelled_.push_back(std::move(running));
    return;
  }
  if (!running->endsWithin(std::chrono::milliseconds(0))) running->abandon();
  running->finish();
  lookAfter(*running);
}

void QtDesktop::cancelLongWork() {
  if (!progress_) return;
  progress_->cancel();
  frame_->view().dropTurns();
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
