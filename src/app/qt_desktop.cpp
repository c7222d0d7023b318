#include "app/qt_desktop.h"

#include <QApplication>
#include <QGridLayout>
#include <QMessageBox>
#include <algorithm>

#include "app/file_dialog.h"
#include "app/main_frame.h"
#include "app/model_data_dialog.h"
#include "app/text.h"
#include "app/view_widget.h"
#include "app/x11.h"

namespace facet {

namespace {

constexpr unsigned iconMask = 0xF0;

/// Qt takes a single "[*]" for the place of a mark, and a double one for the text.
QString windowTitle(std::string_view text) {
  return toQString(text).replace("[*]", "[*][*]");
}

QMessageBox::Icon boxIcon(unsigned flags) {
  switch (flags & iconMask) {
    case MB_ICONHAND:
      return QMessageBox::Critical;
    case MB_ICONQUESTION:
      return QMessageBox::Question;
    case MB_ICONEXCLAMATION:
      return QMessageBox::Warning;
    case MB_ICONINFORMATION:
      return QMessageBox::Information;
    default:
      return QMessageBox::NoIcon;
  }
}

/// Boxes are as wide as their text; the caption, often a path, is to be read as well.
void makeRoomForCaption(QMessageBox& box) {
  constexpr int buttons = 120, widest = 700;
  const int width = box.fontMetrics().horizontalAdvance(box.windowTitle()) + buttons;
  auto* layout = qobject_cast<QGridLayout*>(box.layout());
  if (layout == nullptr) return;
  layout->addItem(new QSpacerItem(std::min(width, widest), 0), layout->rowCount(), 0, 1,
                  layout->columnCount());
}

}  // namespace

/// The texts of a frame that ended in this call's caller are not there yet; the picture is shown without.
void QtDesktop::showPendingPicture() {
  if (frame_) frame_->showPicture();
}

MessageBoxAnswer QtDesktop::messageBox(std::string_view text, std::string_view caption, unsigned flags) {
  const bool question = (flags & MB_YESNO) != 0;
  if (choice_ && question) return *choice_ == DeviceChoice::ref ? IDYES : IDNO;
  if (choice_ && text.starts_with(*choice_ == DeviceChoice::ref ? "Fallback to REF." : "HAL.")) return IDOK;
  showPendingPicture();
  QMessageBox box(frame_ && frame_->isVisible() ? frame_ : nullptr);
  box.setWindowTitle(facet::windowTitle(caption));
  box.setTextFormat(Qt::PlainText);
  box.setText(toQString(text).replace('\r', '\n'));
  box.setIcon(boxIcon(flags));
  box.setStandardButtons(question ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
  const bool second = (flags & MB_DEFBUTTON2) != 0;
  if (question) box.setDefaultButton(second ? QMessageBox::No : QMessageBox::Yes);
  if (question) box.setEscapeButton(QMessageBox::No);
  if ((flags & MB_SYSTEMMODAL) != 0) box.setWindowFlag(Qt::WindowStaysOnTopHint);
  makeRoomForCaption(box);
  const int answer = box.exec();
  if (!question) return IDOK;
  return answer == QMessageBox::Yes ? IDYES : IDNO;
}

void QtDesktop::setStatusText(std::string_view text) {
  lastStatus_ = text;
  if (frame_) frame_->printStatus(toQString(text));
}

void QtDesktop::setWindowTitle(std::string_view text) {
  if (frame_) frame_->setWindowTitle(windowTitle(text));
}

std::optional<FileDialogResult> QtDesktop::openFileDialog(const FileDialogRequest& request) {
  return runFileDialog(request, false, frame_);
}

std::optional<FileDialogResult> QtDesktop::saveFileDialog(const FileDialogRequest& request) {
  return runFileDialog(request, true, frame_);
}

void QtDesktop::showListAndTree(const ListAndTree& content) {
  ModelDataDialog(content, frame_).exec();
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

}  // namespace facet
