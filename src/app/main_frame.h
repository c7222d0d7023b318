#pragma once

#include <QAction>
#include <QMainWindow>
#include <map>

#include "app/command_line.h"

class QToolBar;

namespace facet {

class StatusBar;
class ViewWidget;
class QtDesktop;

/// The main window: menu, toolbar and status bar, made from the command table, around the view.
class CMainFrame final : public QMainWindow {
  Q_OBJECT

 public:
  CMainFrame(QtDesktop& desktop, const CommandLine& commandLine);
  ~CMainFrame() override;

  /// Creates the view, which may open a model, then the bars. False when the view cannot be.
  bool create();

  /// Carries a command out: the view is asked first, then the frame, then the program.
  void runCommand(unsigned id);

  void printStatus(const QString& text);
  void showPicture();
  void showBars(bool show);

  ViewWidget& view() { return *view_; }
  QAction* action(unsigned id) const { return actions_.at(id); }

 protected:
  bool event(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  QMenu* createPopupMenu() override { return nullptr; }  // bars are shown and hidden in the View menu

 private:
  void createActions();
  void createMenus();
  void createToolbar();
  void createStatusBar();
  void toggleBar(QWidget& bar) { bar.setVisible(bar.isHidden()); }
  bool runFrameCommand(unsigned id);

  QtDesktop& desktop_;
  StatusBar* statusBar_ = nullptr;
  QToolBar* toolbar_ = nullptr;
  ViewWidget* view_;
  std::map<unsigned, QAction*> actions_;
};

}  // namespace facet
