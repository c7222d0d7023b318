#include "app/folder_dock.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "app/dialogs.h"
#include "app/folder_model.h"
#include "app/thumbnail_workers.h"
#include "commands/commands.h"

namespace facet {

namespace fs = std::filesystem;

namespace {

constexpr int pictureSide = 128;  // of the screen's pixels at scale 1
constexpr int fewestKept = 300;   // pictures in memory; more where more are visible

}  // namespace

FolderDock::FolderDock(QWidget* parent) : QDockWidget("Folder", parent) {
  setObjectName("folderDock");
  const ThumbnailCache cache(static_cast<int>(std::lround(pictureSide * devicePixelRatioF())));
  model_ = new FolderModel(cache.size(), static_cast<qreal>(cache.size()) / pictureSide, this);
  filtered_ = new FilteredFolder(*model_, this);
  workers_ = std::make_unique<ThumbnailWorkers>(cache);
  createContents();

  const auto soon = [this](QTimer& timer, int milliseconds, void (FolderDock::*what)()) {
    timer.setSingleShot(true);
    timer.setInterval(milliseconds);
    connect(&timer, &QTimer::timeout, this, what);
  };
  soon(lookSoon_, 200, &FolderDock::look);
  soon(requestSoon_, 0, &FolderDock::request);
  soon(takeSoon_, 40, &FolderDock::takeResults);
  soon(filterSoon_, 150, &FolderDock::filter);
  const auto start = [](QTimer& timer) {
    return [&timer] {
      if (!timer.isActive()) timer.start();
    };
  };
  connect(workers_.get(), &ThumbnailWorkers::ready, this, start(takeSoon_));
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this](const QString& path) {
    std::error_code ignored;
    const bool appears = fs::is_directory(folder_, ignored) == gone_;
    if ((path == toQString(folder_) || appears) && !lookSoon_.isActive()) lookSoon_.start();
  });
  connect(filterField_, &QLineEdit::textChanged, &filterSoon_, qOverload<>(&QTimer::start));
  connect(view_->verticalScrollBar(), &QScrollBar::valueChanged, this, start(requestSoon_));
  connect(view_->verticalScrollBar(), &QScrollBar::rangeChanged, this, start(requestSoon_));
  connect(view_, &QListView::clicked, this, &FolderDock::open);
  connect(this, &QDockWidget::visibilityChanged, this, [this](bool visible) {
    seen_ = visible;
    if (visible) return look();
    watch();
    workers_->want({}, nullptr);
    emit note(noted_ = "");
  });
}

FolderDock::~FolderDock() = default;

void FolderDock::createContents() {
  auto* contents = new QWidget(this);
  auto* layout = new QVBoxLayout(contents);
  filterField_ = new QLineEdit(contents);
  filterField_->setObjectName("folderFilter");
  filterField_->setPlaceholderText("Filter: name, tris>1000, missing:yes, type:object");
  filterField_->setToolTip("Words of the name, tris>1000, missing:yes or no, type:object. All must hold.");
  filterField_->setAccessibleName("Filter of the folder's models");
  filterField_->setClearButtonEnabled(true);
  view_ = new QListView(contents);
  view_->setObjectName("folderView");
  view_->setAccessibleName("Models of the folder");
  view_->setModel(filtered_);
  view_->setViewMode(QListView::IconMode);
  view_->setMovement(QListView::Static);
  view_->setResizeMode(QListView::Adjust);
  view_->setUniformItemSizes(true);
  view_->setTextElideMode(Qt::ElideMiddle);
  view_->setIconSize(QSize(pictureSide, pictureSide));
  constexpr int gap = 12;
  view_->setGridSize(QSize(pictureSide + gap, pictureSide + gap + view_->fontMetrics().height()));
  view_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  view_->installEventFilter(this);
  line_ = new QLabel(contents);
  line_->setObjectName("folderLine");
  line_->setTextFormat(Qt::PlainText);
  line_->setWordWrap(true);
  layout->addWidget(filterField_);
  layout->addWidget(view_, 1);
  layout->addWidget(line_);
  contents->setFocusProxy(view_);
  setWidget(contents);
}

void FolderDock::setTextures(const BasePaths& basePaths, bool near) {
  if (basePaths == basePaths_ && near == near_) return;
  basePaths_ = basePaths;
  near_ = near;
  if (seen_) look();
}

void FolderDock::setCurrent(const std::string& path) {
  const std::string name(fileName(path));
  const std::string folder = fs::path(path).parent_path().lexically_normal().string();
  if (folder == folder_ && name == name_) return;
  const bool moved = folder != folder_;
  folder_ = folder;
  name_ = name;
  if (!seen_) return;
  if (moved) return look();
  model_->setShown(name_);
  scrollToCurrent();
}

/// Lists the folder as it is now, and asks for all anew that is shown of it.
void FolderDock::look() {
  if (!seen_) return;
  lookSoon_.stop();
  const bool moved = folder_ != model_->folder();
  const int place = view_->verticalScrollBar()->value();
  const QModelIndex chosen = filtered_->mapToSource(view_->currentIndex());
  const std::string kept = chosen.isValid() ? model_->rows()[static_cast<size_t>(chosen.row())].name : "";
  std::error_code error;
  gone_ = !folder_.empty() && !fs::is_directory(folder_, error);
  model_->setFiles(folder_, folder_.empty() ? std::vector<std::string>() : modelFiles(folder_));
  model_->setShown(name_);
  search_ = std::make_shared<const ModelSearch>(basePaths_, near_, folder_);

  watch();
  if (moved) {
    scrollToCurrent();
  } else if (!view_->currentIndex().isValid()) {  // the list was made anew: back to where it was
    view_->setCurrentIndex(filtered_->mapFromSource(model_->index(model_->rowOf(kept))));
    view_->verticalScrollBar()->setValue(place);
  }
  requestSoon_.start();
  tell();
}

/// Has itself told of files that come and go, and of a folder that does.
void FolderDock::watch() {
  QStringList wanted;
  if (seen_ && !folder_.empty()) wanted << toQString(fs::path(folder_).parent_path().string());
  if (seen_ && !folder_.empty() && !gone_) wanted << toQString(folder_);
  const QStringList watched = watcher_.directories();
  for (const QString& path : watched)
    if (!wanted.contains(path)) watcher_.removePath(path);
  for (const QString& path : wanted)
    if (!watched.contains(path)) watcher_.addPath(path);
}

void FolderDock::scrollToCurrent() {
  const QModelIndex index = filtered_->mapFromSource(model_->index(model_->rowOf(name_)));
  view_->setCurrentIndex(index);
  if (index.isValid()) view_->scrollTo(index);
}

void FolderDock::filter() {
  filtered_->setFilter(FolderFilter(filterField_->text()));
  requestSoon_.start();
  tell();
}

/// The first row that is visible and the one behind the last. The view's rows form a grid.
std::pair<int, int> FolderDock::visibleRows() const {
  const QSize cell = view_->gridSize(), area = view_->viewport()->size();
  const int columns = std::max(1, area.width() / cell.width());
  const int top = view_->verticalScrollBar()->value(), count = filtered_->rowCount();
  const int first = std::min(top / cell.height() * columns, count);
  const int last = ((top + area.height()) / cell.height() + 1) * columns;
  return {first, std::clamp(last, first, count)};
}

/// Asks for the pictures that are visible, then for those near to them, nearest first, then for the figures
/// that the filter waits for.
void FolderDock::request() {
  if (!seen_ || !search_) return;
  std::vector<ThumbnailRequest> requests;
  const auto want = [&](int row) {
    if (row < 0 || row >= filtered_->rowCount()) return;
    const auto file = static_cast<size_t>(filtered_->mapToSource(filtered_->index(row, 0)).row());
    if (model_->wantsPicture(file)) requests.push_back({model_->pathOf(file), ThumbnailRequest::picture});
  };
  const auto [first, last] = visibleRows();
  const int near = 2 * (last - first);
  model_->keepPictures(std::max(fewestKept, 6 * (last - first)));
  for (int row = first; row < last; ++row) want(row);
  for (int away = 0; away < near; ++away) {
    want(last + away);
    want(first - 1 - away);
  }
  for (const size_t row : filtered_->unknownRows())
    requests.push_back({model_->pathOf(row), ThumbnailRequest::figures});
  workers_->want(std::move(requests), search_);
}

void FolderDock::takeResults() {
  std::vector<FolderModel::News> news;
  for (ThumbnailWorkers::Result& result : workers_->take()) {
    const fs::path path = result.request.path;
    if (path.parent_path() != model_->folder()) continue;  // of the folder before
    news.push_back({path.filename().string(), result.request.kind, std::move(result.thumbnail)});
  }
  const int before = filtered_->rowCount();
  model_->take(news);
  if (filtered_->rowCount() != before) requestSoon_.start();  // other rows are visible now
  tell();
}

/// Says in the dock what is listed, and everywhere what is wrong.
void FolderDock::tell() {
  const int count = model_->rowCount(), shown = filtered_->rowCount();
  const size_t unknown = filtered_->unknownRows().size();
  const auto number = [](size_t value) { return toQString(groupedNumber(value)); };
  const QString files = count == 1 ? "1 model" : number(static_cast<size_t>(count)) + " models";
  QString problem, line = shown == count ? files : number(static_cast<size_t>(shown)) + " of " + files;
  if (const int failures = model_->failures(); failures > 0)
    problem = number(static_cast<size_t>(failures)) +
              (failures == 1 ? " file of the folder does not load; its tool tip says why"
                             : " files of the folder do not load; their tool tips say why");
  if (gone_) problem = "The folder " + toQString(folder_) + " is gone or cannot be read";
  if (unknown > 0) line += ", " + number(unknown) + " still to be looked at";
  if (const QString& error = filtered_->filter().error(); !error.isEmpty()) line = error;
  line_->setText(problem.isEmpty() ? line : line + '\n' + problem);
  if (problem == noted_) return;
  noted_ = problem;
  emit note(problem);
}

void FolderDock::open(const QModelIndex& index) {
  const QModelIndex file = filtered_->mapToSource(index);
  if (file.isValid()) emit openRequested(model_->pathOf(static_cast<size_t>(file.row())));
}

bool FolderDock::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) requestSoon_.start();
  if (event->type() != QEvent::KeyPress) return QDockWidget::eventFilter(watched, event);
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  open(view_->currentIndex());
  return true;
}

/// Files may have changed while another window was in front.
void FolderDock::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow() && seen_) lookSoon_.start();
  QDockWidget::changeEvent(event);
}

}  // namespace facet
