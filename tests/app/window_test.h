#pragma once

#include <gmock/gmock.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/dialogs.h"
#include "app/view_widget.h"
#include "app/viewer_app.h"
#include "commands/recorded_viewer.h"

namespace facet {

// Commands of the view that tests send.
inline constexpr unsigned changeFov = 57403, properties = 57429, fileNew = 57600;

/// While it lives, gives each modal window that opens the next answer; with none left the window is closed.
class ModalAnswers {
 public:
  using Answer = std::function<void(QWidget&)>;

  explicit ModalAnswers(std::vector<Answer> answers = {}) : answers_(std::move(answers)) {
    QObject::connect(&timer_, &QTimer::timeout, [this] { answerNext(); });
    timer_.start(5);
  }

  /// The titles of what was answered, and the texts of message boxes.
  std::vector<std::string> titles, texts;

 private:
  void answerNext() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible() || answering_.contains(modal)) return;
    titles.push_back(toBytes(modal->windowTitle()));
    if (auto* box = qobject_cast<QMessageBox*>(modal)) texts.push_back(toBytes(box->text()));
    const Answer answer = next_ < answers_.size() ? answers_[next_++] : [](QWidget& other) { other.close(); };
    // An answer may open another window; the timer would not fire again while it is in its own slot.
    timer_.stop();
    QTimer::singleShot(0, &timer_, [this, window = QPointer<QWidget>(modal), answer] {
      timer_.start(5);
      if (!window) return;
      QWidget* const answered = window;
      answering_.insert(answered);  // it is seen again when a box that its answer opened has closed
      answer(*answered);
      answering_.erase(answered);
    });
  }

  std::vector<Answer> answers_;
  std::set<QWidget*> answering_;
  size_t next_ = 0;
  QTimer timer_;
};

/// Types a name into a file dialog, after choosing a row of its types, and accepts.
inline ModalAnswers::Answer chooseFile(const std::string& name, int type = 0) {
  return [=](QWidget& modal) {
    auto* types = modal.findChild<QComboBox*>("fileTypeCombo");
    auto* line = modal.findChild<QLineEdit*>("fileNameEdit");
    ASSERT_TRUE(types && line);
    for (int i = 0; i < type; ++i) QTest::keyClick(types, Qt::Key_Down);
    line->setText(toQString(name));
    QTest::keyClick(line, Qt::Key_Return);
  };
}

/// Presses a button of a message box.
inline ModalAnswers::Answer press(QMessageBox::StandardButton button) {
  return [=](QWidget& modal) {
    auto* box = qobject_cast<QMessageBox*>(&modal);
    ASSERT_TRUE(box && box->button(button));
    box->button(button)->click();
  };
}

/// A window in an empty folder, which is the current one and holds a configuration.
class WindowTest : public testing::Test {
 protected:
  WindowTest() { folder.write("VXMViewer.cfg", std::string("textures/\0\0", 11)); }
  ~WindowTest() override { app().stop(); }

  /// Starts the program as `vxmviewer --device ref MODEL`.
  bool start(const std::string& model = "", std::optional<DeviceChoice> device = DeviceChoice::ref) {
    return start({"--", model}, device);
  }
  bool start(std::vector<std::string> words, std::optional<DeviceChoice> device = DeviceChoice::ref) {
    words.insert(words.begin(), "vxmviewer");
    CommandLine line = parseCommandLine(words);
    line.device = device;
    return app().start(line) && QTest::qWaitForWindowExposed(&frame());
  }

  static ViewerApp& app() { return *static_cast<ViewerApp*>(qApp); }
  static CMainFrame& frame() { return app().frame(); }
  static ViewWidget& widget() { return frame().view(); }
  static Viewer& viewer() { return widget().viewer(); }
  static ModelView& view() { return viewer().view; }
  static StatusBar& status() { return *frame().findChild<StatusBar*>(); }
  static std::string title() { return toBytes(frame().windowTitle()); }

  static void key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(&widget(), static_cast<Qt::Key>(key), modifiers);
  }

  TempFolder folder;
  CurrentFolder current{folder.path()};
};

}  // namespace facet
