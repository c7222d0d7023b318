#include "app/main_frame.h"

#include <QApplication>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QScreen>
#include <QStatusTipEvent>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <algorithm>

#include "app/dialogs.h"
#include "app/file_watch.h"
#include "app/folder_dock.h"
#include "app/model_dock.h"
#include "app/native.h"
#include "app/pictures.h"
#include "app/view_widget.h"
#include "app/viewer_app.h"
#include "app/window_memory.h"
#include "commands/commands.h"
#include "commands/looking.h"
#include "platform/progress.h"

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

/// Names of files may hold line breaks of any kind.
QString oneLine(QString text) {
  const auto breaks = [](QChar c) { return c.isSpace() || c.category() == QChar::Other_Control; };
  std::replace_if(text.begin(), text.end(), breaks, QChar(' '));
  return text;
}

}  // namespace

StatusBar::StatusBar(QWidget* parent)
    : QStatusBar(parent),
      message_(new QLabel(this)),
      note_(new QLabel(this)),
      failure_(new QLabel(this)),
      missing_(new QLabel(this)),
      progress_(new QProgressBar(this)) {
  message_->setText(toQString(idleStatusText));
  message_->setTextFormat(Qt::PlainText);
  message_->setObjectName("message");
  message_->setMinimumWidth(1);  // a long message must not widen the window
  message_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  addWidget(message_, 1);
  constexpr int progressWidth = 200;
  progress_->setObjectName("progress");
  progress_->setAccessibleName("Loading");
  progress_->setMaximumWidth(progressWidth);
  addPermanentWidget(progress_);
  progress_->hide();
  note_->setObjectName("note");
  failure_->setObjectName("failure");
  missing_->setObjectName("missing");
  for (QLabel* pane : {note_, failure_, missing_}) {
    pane->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    pane->setTextFormat(Qt::PlainText);
    pane->setMinimumWidth(1);
    addPermanentWidget(pane);
    pane->hide();
  }
  for (size_t i = 0; i < indicators_.size(); ++i) {
    auto* pane = new QLabel(toQString(lockIndicators[i]), this);
    pane->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    pane->setObjectName(toQString(lockIndicators[i]));
    pane->setEnabled(false);
    addPermanentWidget(pane);
    indicators_[i] = pane;
  }
  failure_->setPalette(errorPalette());
  updateLockKeys();
}

void StatusBar::print(const QString& text) {
  prompting_ = false;
  message_->setText(oneLine(text));
  if (isVisible()) message_->repaint();
}

void StatusBar::showNote(QLabel& pane, const QString& text, const QString& details) {
  constexpr int widest = 400;
  pane.setText(pane.fontMetrics().elidedText(oneLine(text), Qt::ElideRight, widest));
  pane.setToolTip("<p style='white-space:pre'>" + details.toHtmlEscaped() + "</p>");
  pane.setVisible(!text.isEmpty());
}

void StatusBar::showProgress(const Progress* progress) {
  constexpr int steps = 100;
  progress_->setRange(0, progress ? steps : 0);
  progress_->setFormat("%p % - Esc cancels");
  if (progress) progress_->setValue(static_cast<int>(progress->done() * steps));
  progress_->show();
}

void StatusBar::hideProgress() {
  progress_->hide();
}

void StatusBar::prompt(const QString& text) {
  if (text.isEmpty() && !prompting_) return;
  prompting_ = !text.isEmpty();
  message_->setText(prompting_ ? text : toQString(idleStatusText));
}

/// The red that can be read depends on the ground.
void StatusBar::changeEvent(QEvent* event) {
  QStatusBar::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) failure_->setPalette(errorPalette());
}

void StatusBar::updateLockKeys() {
  const unsigned on = lockKeys();
  for (size_t i = 0; i < indicators_.size(); ++i) indicators_[i]->setEnabled((on >> i & 1) != 0);
}

CMainFrame::CMainFrame(QtDesktop& desktop, const CommandLine& commandLine)
    : desktop_(desktop), view_(new ViewWidget(commandLine, this)), watch_(new FileWatch(this)) {
  setWindowTitle("VXMViewer");
  resize(freeSize(*this).boundedTo(QSize(1280, 720)));
  setAcceptDrops(true);
  setCentralWidget(view_);
  connect(view_, &ViewWidget::command, this, &CMainFrame::runCommand);
  connect(view_, &ViewWidget::shown, this, &CMainFrame::updateNotes);
  connect(watch_, &FileWatch::changed, this, [this] { runCommand(ID_FILE_RELOAD); });
  createMenus();
  restoreNavigation(view_->viewer());
}

CMainFrame::~CMainFrame() {
  delete folderDock_;  // notes nothing of a window that goes
  delete modelDock_;   // lays out rows of the model to its end
  desktop_.awaitCancelled();
  delete view_;  // says so in title and picture while they are there
  desktop_.attach(nullptr);
}

bool CMainFrame::create() {
  desktop_.attach(this);
  if (!view_->create()) return false;
  createToolbar();
  statusBar_ = new StatusBar(this);
  setStatusBar(statusBar_);
  view_->installEventFilter(this);
  const Viewer& viewer = view_->viewer();
  if (!viewer.commandLine.empty() && !viewer.view.scene.model) printStatus(toQString(desktop_.lastStatus()));
  createDocks();
  restoreWindow(*this);
  toolbar_->show();  // as at every start
  updateNotes();
  view_->setFocus();
  return true;
}

void CMainFrame::editTextureFolders() {
  Viewer& viewer = view_->viewer();
  const auto bases = runTextureFolders(viewer.view.scene.texturePath, viewer.configuration, this);
  if (!bases) return;
  viewer.view.scene.texturePath = *bases;
  reloadModel(viewer);
  view_->update();
  updateNotes();
}

void CMainFrame::exportModel() {
  Viewer& viewer = view_->viewer();
  if (!viewer.view.scene.model) return;
  if (const auto chosen = runExport(viewer.lastExport, viewer.lastSaveDirectory, this))
    exportModelFile(viewer, *chosen);
  updateNotes();
}

void CMainFrame::savePicture() {
  Viewer& viewer = view_->viewer();
  if (!viewer.view.scene.model) return;
  const QSize seen = view_->size() * view_->devicePixelRatioF();
  if (const auto chosen = runSavePicture(viewer.lastPicture, seen, viewer.lastSaveDirectory, this))
    facet::savePicture(viewer, chosen->wish, chosen->path);
  updateNotes();
}

void CMainFrame::copyPicture() {
  Viewer& viewer = view_->viewer();
  if (!viewer.view.scene.model) return;
  const QSize seen = view_->size() * view_->devicePixelRatioF();
  const auto [picture, error] =
      drawPicture(viewer, {static_cast<uint32_t>(seen.width()), static_cast<uint32_t>(seen.height()), false});
  viewer.note = error.empty() ? "Picture copied" : "No picture: " + error;
  if (error.empty()) {
    const QImage whole(picture.pixels.data(), static_cast<int>(picture.width),
                       static_cast<int>(picture.height), QImage::Format_RGBA8888);
    QGuiApplication::clipboard()->setImage(whole.copy());
  }
  updateNotes();
}

void CMainFrame::copyCamera() {
  Viewer& viewer = view_->viewer();
  QGuiApplication::clipboard()->setText(toQString(cameraOptions(viewer.view)));
  viewer.note = "Camera copied as options of facetbench render";
  updateNotes();
}

void CMainFrame::pasteCamera() {
  Viewer& viewer = view_->viewer();
  const std::string error = applyCameraOptions(viewer.view, toBytes(QGuiApplication::clipboard()->text()));
  viewer.note = error.empty() ? "Camera pasted" : "Clipboard: " + error;
  view_->refresh();
}

void CMainFrame::updateNotes() {
  if (!statusBar_) return;
  const Viewer& viewer = view_->viewer();
  const Model* model = viewer.view.scene.model.get();
  const QString failure = toQString(viewer.failure);
  statusBar_->showNote(toQString(viewer.note));
  statusBar_->showFailure(failure.isEmpty() ? folderNote_ : failure);
  statusBar_->showMissing(toQString(model ? missingTexturesCount(*model) : ""),
                          toQString(model ? missingTexturesDetails(*model) : ""));
  updateFolder();
  followModel();
}

/// Remembers a model that was opened, and watches the files of the one that is shown while that is asked for.
void CMainFrame::followModel() {
  const Viewer& viewer = view_->viewer();
  const Scene& scene = viewer.view.scene;
  const std::filesystem::path path = std::filesystem::path(viewer.loadDirectory) / scene.modelPath;
  if (scene.model && std::exchange(followed_, scene.generation) != scene.generation)
    recentFiles_->add(path.string());
  const uint64_t wanted = viewer.watchesFile && scene.model ? scene.generation : 0;
  if (std::exchange(watched_, wanted) == wanted) return;
  std::vector<std::string> files;
  if (wanted != 0) {
    files = scene.model->listedFiles;
    files.push_back(path.string());
    for (const Material& material : ownMaterials(*scene.model))
      if (!material.textureFile.empty()) files.push_back(material.textureFile);
  }
  watch_->watch(files);
}

void CMainFrame::updateFolder() {
  const Viewer& viewer = view_->viewer();
  const std::filesystem::path& path = viewer.view.scene.modelPath;
  folderDock_->setTextures(viewer.view.scene.texturePath, viewer.searchNear);
  folderDock_->setCurrent(path.empty() ? "" : (viewer.loadDirectory / path).string());
}

void CMainFrame::createMenus() {
  for (const Menu& menu : commandMenus()) {
    if (menu.text.empty()) continue;
    QMenu* popup = menuBar()->addMenu(toQString(menu.text));
    QMenu* submenu = popup;
    for (const Command& command : menu.commands) {
      if (toQString(command.submenu) != submenu->title())
        submenu = command.submenu.empty() ? popup : popup->addMenu(toQString(command.submenu));
      if (command.id == ID_FILE_RECENT)
        addRecentFiles(*submenu, command);
      else
        addAction(*submenu, command);
    }
    connect(popup, &QMenu::aboutToShow, this, [this, commands = menu.commands] {
      for (const Command& command : commands)
        if (command.checked) actions_.at(command.id)->setChecked(command.checked(view_->viewer()));
      actions_.at(ID_VIEW_TOOLBAR)->setChecked(!toolbar_->isHidden());
      actions_.at(ID_VIEW_STATUS_BAR)->setChecked(!statusBar_->isHidden());
    });
  }
  for (const unsigned bar : {ID_VIEW_TOOLBAR, ID_VIEW_STATUS_BAR}) actions_.at(bar)->setCheckable(true);
}

void CMainFrame::createDocks() {
  modelDock_ = new ModelDock(*view_, this);
  addDockWidget(Qt::RightDockWidgetArea, modelDock_);
  modelDock_->hide();
  for (const auto signal : {&ViewWidget::shown, &ViewWidget::lookChanged})
    connect(view_, signal, modelDock_, &ModelDock::update);

  folderDock_ = new FolderDock(this);
  addDockWidget(Qt::LeftDockWidgetArea, folderDock_);
  folderDock_->hide();
  connect(folderDock_, &FolderDock::openRequested, view_, &ViewWidget::openPath);
  connect(folderDock_, &FolderDock::note, this, [this](const QString& text) {
    folderNote_ = text;
    updateNotes();
  });
}

/// A dock that is shown takes the keyboard; the view has it back when it is hidden, or by Esc.
void CMainFrame::toggleDock(QDockWidget& dock) {
  dock.setVisible(dock.isHidden());
  if (dock.isVisible())
    dock.widget()->setFocus();
  else
    view_->setFocus();
}

void CMainFrame::addRecentFiles(QMenu& menu, const Command& command) {
  recentFiles_ = new RecentFiles(toQString(command.menuText), this);
  recentFiles_->menuAction()->setStatusTip(toQString(command.prompt));
  connect(recentFiles_, &RecentFiles::openRequested, view_, &ViewWidget::openPath);
  actions_[command.id] = menu.addMenu(recentFiles_);
}

void CMainFrame::addAction(QMenu& menu, const Command& command) {
  if (command.menuText.empty()) {
    menu.addSeparator();
    return;
  }
  auto* action = new QAction(toQString(command.menuText), this);
  action->setStatusTip(toQString(command.prompt));
  action->setEnabled(command.enabled());
  action->setCheckable(command.checked != nullptr);
  action->setMenuRole(QAction::NoRole);
  connect(action, &QAction::triggered, this, [this, id = command.id] { runCommand(id); });
  menu.addAction(action);
  actions_[command.id] = action;
}

void CMainFrame::createToolbar() {
  constexpr int iconSize = 16;
  toolbar_ = addToolBar("Toolbar");
  toolbar_->setObjectName("toolbar");
  toolbar_->setIconSize(QSize(iconSize, iconSize));
  toolbar_->installEventFilter(this);
  for (const Command* command : toolbarCommands()) {
    if (command == nullptr) {
      toolbar_->addSeparator();
      continue;
    }
    const ToolbarButton& button = command->button;
    QAction* action = actions_.at(command->id);
    const QString tip = toQString(button.tooltip.empty() ? command->prompt : button.tooltip);
    const QString keys = toQString(keysOf(*command));
    action->setToolTip(keys.isEmpty() ? tip : QString("%1 (%2)").arg(tip, keys));
    action->setIcon(themedIcon(toQString(button.icon)));
    toolbar_->addAction(action);
  }
}

void CMainFrame::runCommand(unsigned id) {
  if (view_->runCommand(id)) return;
  if (id == ID_VIEW_TOOLBAR) toolbar_->setVisible(toolbar_->isHidden());
  if (id == ID_VIEW_STATUS_BAR) statusBar_->setVisible(statusBar_->isHidden());
  if (id == ID_VIEW_MODEL_PANEL) toggleDock(*modelDock_);
  if (id == ID_VIEW_FOLDER_PANEL) toggleDock(*folderDock_);
  if (id == ID_FILE_SAVE_PICTURE) view_->inTurn([this] { savePicture(); });
  if (id == ID_EDIT_COPY_PICTURE) view_->inTurn([this] { copyPicture(); });
  if (id == ID_EDIT_COPY_CAMERA) copyCamera();
  if (id == ID_EDIT_PASTE_CAMERA) pasteCamera();
  if (id == ID_FILE_TEXTURES) view_->inTurn([this] { editTextureFolders(); });
  if (id == ID_FILE_EXPORT) view_->inTurn([this] { exportModel(); });
  if (id == ID_APP_EXIT) close();
  if (id == ID_HELP_KEYS) runShortcuts(this);
  if (id == ID_APP_ABOUT) runAbout(this);
}

void CMainFrame::printStatus(const QString& text) {
  if (statusBar_) statusBar_->print(text);
}

void CMainFrame::showProgress(const Progress* progress) {
  if (statusBar_) statusBar_->showProgress(progress);
}

void CMainFrame::hideProgress() {
  if (statusBar_) statusBar_->hideProgress();
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

/// Keys that a dock has no use for: Esc goes back to the view, which knows what others stand for.
void CMainFrame::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) return view_->setFocus();
  if (!view_->hasFocus() && view_->pressAccelerator(*event)) return;
  QMainWindow::keyPressEvent(event);
}

void CMainFrame::closeEvent(QCloseEvent* event) {
  desktop_.cancelLongWork();
  recentFiles_->save();
  saveWindow(*this, view_->viewer());
  QMainWindow::closeEvent(event);
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
