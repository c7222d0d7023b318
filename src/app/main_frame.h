#pragma once

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QStatusBar>
#include <array>
#include <map>

#include "app/command_line.h"

class QDockWidget;
class QMenu;
class QProgressBar;
class QToolBar;

namespace facet {

class FileWatch;
class FolderDock;
class ModelDock;
class Progress;
class RecentFiles;
class ViewWidget;
class QtDesktop;
struct Command;

/// The message pane, those of a long work, of what went wrong and what is missing, and those of the three
/// lock keys.
class StatusBar final : public QStatusBar {
 public:
  explicit StatusBar(QWidget* parent = nullptr);

  /// Shows a message and repaints at once: whoever says something may be busy for long.
  void print(const QString& text);

  /// Shows the prompt of the menu entry under the cursor; an empty one, that there is none any more.
  void prompt(const QString& text);

  /// Shows what went wrong with the last save, and which textures are missing; an empty text, nothing.
  void showFailure(const QString& text) { showNote(*failure_, text, text); }
  void showNote(const QString& text) { showNote(*note_, text, text); }
  void showMissing(const QString& text, const QString& details) { showNote(*missing_, text, details); }

  /// Shows how far a work has come, and how it is cancelled; without a progress, that one is going on.
  void showProgress(const Progress* progress);
  void hideProgress();

  /// Lights the panes of the lock keys that are on.
  void updateLockKeys();

  QString message() const { return message_->text(); }
  bool lit(size_t indicator) const { return indicators_[indicator]->isEnabled(); }

 protected:
  void changeEvent(QEvent* event) override;

 private:
  static void showNote(QLabel& pane, const QString& text, const QString& details);

  QLabel *message_, *note_, *failure_, *missing_;
  QProgressBar* progress_;
  std::array<QLabel*, 3> indicators_;
  bool prompting_ = false;
};

/// The main window: menu, toolbar and status bar, made from the table of commands, around the view.
class CMainFrame final : public QMainWindow {
  Q_OBJECT

 public:
  CMainFrame(QtDesktop& desktop, const CommandLine& commandLine);
  ~CMainFrame() override;

  /// Creates the view, which may open a model, then the bars. False when the view cannot be.
  bool create();

  /// Carries a command out: the view is asked first, then the frame.
  void runCommand(unsigned id);

  /// Shows a text on the status line, where there is one already.
  void printStatus(const QString& text);

  /// Shows the progress of a long work on the status bar, until it is hidden.
  void showProgress(const Progress* progress);
  void hideProgress();

  /// Shows or hides toolbar and status bar.
  void showBars(bool show);

  ViewWidget& view() { return *view_; }
  QAction* action(unsigned id) const { return actions_.at(id); }

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  QMenu* createPopupMenu() override { return nullptr; }  // bars are shown and hidden in the View menu

 private:
  void createMenus();
  void addAction(QMenu& menu, const Command& command);
  void addRecentFiles(QMenu& menu, const Command& command);
  void createToolbar();
  void createDocks();
  void toggleDock(QDockWidget& dock);
  void updateNotes();
  void updateFolder();
  void editTextureFolders();
  void exportModel();
  void savePicture();
  void copyPicture();
  void followModel();
  void copyCamera();
  void pasteCamera();

  QtDesktop& desktop_;
  StatusBar* statusBar_ = nullptr;
  QToolBar* toolbar_ = nullptr;
  ViewWidget* view_;
  ModelDock* modelDock_ = nullptr;
  FolderDock* folderDock_ = nullptr;
  RecentFiles* recentFiles_ = nullptr;
  FileWatch* watch_;
  uint64_t followed_ = 0;  ///< the model that was noted as opened, by Scene::generation
  uint64_t watched_ = 0;   ///< the one whose files are watched; 0: none
  QString folderNote_;
  std::map<unsigned, QAction*> actions_;
};

}  // namespace facet
