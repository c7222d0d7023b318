#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "app/command_line.h"
#include "commands/commands.h"
#include "platform/desktop.h"

namespace facet {

class GlContext;
class OffscreenGl;

/// The child window that a ModelView is drawn in: gives it a device, and the mouse and keys of its user.
class ViewWidget final : public QWidget {
  Q_OBJECT

 public:
  /// Reads the configuration file, so a box may be shown.
  explicit ViewWidget(const CommandLine& commandLine, QWidget* parent = nullptr);
  ~ViewWidget() override;

  /// Sets up the device and opens the command line's model. False when there is no device to be had.
  bool create();

  Viewer& viewer() { return viewer_; }

  /// Offers a command to the view. False when it is not one of the view's.
  bool runCommand(unsigned id);

  /// Sends the command that the key is an accelerator of. False when it is of none.
  bool pressAccelerator(const QKeyEvent& event);

  /// Opens a file or the first model of a folder.
  void openPath(const std::string& path);

  /// Shows pictures through a ramp, where the display has none of its own.
  void setPictureRamp(const GammaRamp& ramp);

  /// Carries out what has to wait while a model loads or a dialog is open: now, or afterwards and in order.
  void inTurn(std::function<void()> action);

  /// Forgets what still waits for its turn.
  void dropTurns();

  /// Shows the last frame that was drawn, with its texts.
  void showPicture();

  /// Something about the scene was changed besides the view's own commands: draws it and tells of it.
  void refresh();

 signals:
  /// A key stands for a command.
  void command(unsigned id);

  /// A frame was drawn, perhaps of another model.
  void shown();

  /// What is selected, hidden or measured may have changed.
  void lookChanged();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  /// A second quick press is no press; orbiting, it sets the pivot.
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  bool focusNextPrevChild(bool) override { return false; }  // Tab is a key like any other here

 private:
  std::shared_ptr<GlContext> viewContext();
  QImage picture();
  void pressKey(uint32_t key);
  void drag(const QMouseEvent& event);
  void carryOut(const Command& command);
  void carryOutNext();
  void drawLater(bool changed);
  template <class Handle>
  void follow(Handle handle);

  Viewer viewer_;
  std::shared_ptr<OffscreenGl> gl_;  ///< none while the software device draws
  bool drawn_ = false;               ///< a frame of this size has been drawn that was not painted yet
  bool changed_ = false;             ///< the last frame is behind the view
  bool rebuilt_ = false;             ///< a frame with new buffers has been drawn since the last painting

  std::deque<std::function<void()>> turns_;  ///< the first one is being carried out

  std::optional<GammaRamp> ramp_;

  QPoint pressed_, dragged_;  ///< where the last button went down, and where its drag has come to
  bool clicking_ = false;     ///< it was the left one, and has not moved since

  QTimer repeat_;
  uint32_t repeatedKey_ = 0;
};

}  // namespace facet
