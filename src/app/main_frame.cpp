#include "app/main_frame.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QStatusTipEvent>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include "app/about_dialog.h"
#include "app/icons.h"
#include "app/qt_desktop.h"
#include "app/shortcut_dialog.h"
#include "app/status_bar.h"
#include "app/text.h"
#include "app/view_widget.h"
#include "commands/command_table.h"

namespace facet {

namespace {

/// The first local file among what is dragged, empty when there is none. A name that is no UTF-8 has the
/// bytes of the disk.
std::string droppedPath(const QMimeData& data) {
  for (const QUrl& url : data.urls()) {
    if (!url.isLocalFile()) continue;
    const QString path = url.toLocalFile();
    if (!path.contains(QChar::ReplacementCharacter)) return toBytes(path);
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
  }
  return {};
}

/// Accepts a file as a copy, whatever is proposed: a source that may move it would delete it.
void takeDrop(QDropEvent& event) {
  const bool copy = event.possibleActions().testFlag(Qt::CopyAction);
  const bool link = event.possibleActions().testFlag(Qt::LinkAction);
  event.setDropAction(copy ? Qt::CopyAction : Qt::LinkAction);
  event.setAccepted((copy || link) && !droppedPath(*event.mimeData()).empty());
}

/// What a window may take of its screen. Its borders are unknown before it is shown; the style's are close.
QSize freeSize(const QWidget& window) {
  const int border = window.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  const int caption = window.style()->pixelMetric(QStyle::PM_TitleBarHeight);
  return window.screen()->availableSize() - QSize(2 * border, 2 * border + caption);
}

}  // namespace

CMainFrame::CMainFrame(QtDesktop& desktop, const CommandLine& commandLine)
    : desktop_(desktop), view_(new ViewWidget(commandLine, this)) {
  setWindowTitle("VXMViewer");
  resize(freeSize(*this).boundedTo(QSize(1280, 720)));
  setAcceptDrops(true);
  setCentralWidget(view_);
  connect(view_, &ViewWidget::command, this, &CMainFrame::runCommand);
  createActions();
  createMenus();
}

CMainFrame::~CMainFrame() {
  delete view_;  // says so in title and picture while they are there
  desktop_.attach(nullptr);
}

bool CMainFrame::create() {
  desktop_.attach(this);
  if (!view_->create()) return false;
  createToolbar();
  createStatusBar();
  const Viewer& viewer = view_->viewer();
  if (!viewer.commandLine.empty() && !viewer.view.model) printStatus(toQString(desktop_.lastStatus()));
  view_->setFocus();
  return true;
}

void CMainFrame::createActions() {
  for (const Command& command : commandTable()) {
    auto* action = new QAction(toQString(command.menuText), this);
    action->setStatusTip(toQString(command.prompt));
    action->setToolTip(toQString(command.tooltip));
    action->setEnabled(command.enabled);
    action->setCheckable(command.id == ID_VIEW_TOOLBAR || command.id == ID_VIEW_STATUS_BAR);
    action->setMenuRole(QAction::NoRole);
    connect(action, &QAction::triggered, this, [this, id = command.id] { runCommand(id); });
    actions_[command.id] = action;
  }
}

void CMainFrame::createMenus() {
  for (const Popup& popup : facet::menuBar()) {
    QMenu* menu = menuBar()->addMenu(toQString(popup.text));
    for (const CommandId id : popup.entries) {
      if (id == ID_SEPARATOR)
        menu->addSeparator();
      else
        menu->addAction(actions_.at(id));
    }
    connect(menu, &QMenu::aboutToShow, this, [this] {
      actions_.at(ID_VIEW_TOOLBAR)->setChecked(!toolbar_->isHidden());
      actions_.at(ID_VIEW_STATUS_BAR)->setChecked(!statusBar_->isHidden());
    });
  }
}

void CMainFrame::createToolbar() {
  constexpr int iconSize = 16;
  toolbar_ = addToolBar("Toolbar");
  toolbar_->setObjectName("toolbar");
  toolbar_->setIconSize(QSize(iconSize, iconSize));
  for (const ToolbarEntry& entry : facet::toolbar()) {
    if (entry.id == ID_SEPARATOR) {
      toolbar_->addSeparator();
      continue;
    }
    QAction* action = actions_.at(entry.id);
    action->setIcon(themedIcon(toQString(entry.icon)));
    toolbar_->addAction(action);
  }
}

void CMainFrame::createStatusBar() {
  statusBar_ = new StatusBar(this);
  setStatusBar(statusBar_);
  view_->installEventFilter(this);
  toolbar_->installEventFilter(this);
}

void CMainFrame::runCommand(unsigned id) {
  if (view_->runCommand(id) || runFrameCommand(id)) return;
  if (id == ID_HELP_KEYS) ShortcutDialog(this).exec();
  if (id == ID_APP_ABOUT) AboutDialog(this).exec();
}

bool CMainFrame::runFrameCommand(unsigned id) {
  switch (id) {
    case ID_VIEW_TOOLBAR:
      toggleBar(*toolbar_);
      return true;
    case ID_VIEW_STATUS_BAR:
      toggleBar(*statusBar_);
      return true;
    case ID_APP_EXIT:
      close();
      return true;
    default:
      return false;
  }
}

void CMainFrame::printStatus(const QString& text) {
  if (statusBar_) statusBar_->print(text);
}

void CMainFrame::showPicture() {
  view_->showPicture();
}

void CMainFrame::showBars(bool show) {
  if (toolbar_) toolbar_->setVisible(show);
  if (statusBar_) statusBar_->setVisible(show);
}

bool CMainFrame::event(QEvent* event) {
  if (statusBar_ && event->type() == QEvent::StatusTip) {
    statusBar_->prompt(static_cast<QStatusTipEvent*>(event)->tip());
    return true;
  }
  if (statusBar_ && event->type() == QEvent::WindowActivate) statusBar_->updateLockKeys();
  return QMainWindow::event(event);
}

/// Keys that reach the toolbar, which is a window of its own while it floats, are meant for the view, and
/// Alt+F4 for the frame. Lock keys pass through the view like all others.
bool CMainFrame::eventFilter(QObject* watched, QEvent* event) {
  if (watched == toolbar_ && event->type() == QEvent::Close && event->spontaneous()) {
    event->ignore();
    close();
    return true;
  }
  if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
    return QMainWindow::eventFilter(watched, event);
  if (watched == toolbar_) return QApplication::sendEvent(view_, event);
  statusBar_->updateLockKeys();
  return false;
}

void CMainFrame::focusInEvent(QFocusEvent*) {
  view_->setFocus();
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
  takeDrop(*event);
}

void CMainFrame::dragMoveEvent(QDragMoveEvent* event) {
  takeDrop(*event);
}

/// Opens what was dropped after the drop is over, so that its source need not wait for the load.
void CMainFrame::dropEvent(QDropEvent* event) {
  takeDrop(*event);
  const std::string path = droppedPath(*event->mimeData());
  if (event->isAccepted()) QTimer::singleShot(0, this, [this, path] { view_->openPath(path); });
}

}  // namespace facet
