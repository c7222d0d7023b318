#include "app/folder_model.h"

#include <QApplication>
#include <QFont>
#include <QPainter>
#include <QStyle>
#include <algorithm>

#include "app/dialogs.h"
#include "platform/text.h"

namespace facet {

namespace {

/// A picture of the size of all others, with an icon of the style in its middle or none.
QPixmap placeholder(int side, qreal scale, const QIcon& icon) {
  QPixmap pixmap(side, side);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  const int middle = side / 4;
  icon.paint(&painter, QRect(side / 2 - middle / 2, side / 2 - middle / 2, middle, middle));
  painter.end();
  pixmap.setDevicePixelRatio(scale);
  return pixmap;
}

QString counted(uint32_t number, const char* one, const char* many) {
  return toQString(groupedNumber(number)) + (number == 1 ? one : many);
}

}  // namespace

FolderModel::FolderModel(int side, qreal scale, QObject* parent)
    : QAbstractListModel(parent),
      empty_(placeholder(side, scale, QApplication::style()->standardIcon(QStyle::SP_FileIcon))),
      broken_(placeholder(side, scale, QApplication::style()->standardIcon(QStyle::SP_MessageBoxWarning))),
      scale_(scale) {}

void FolderModel::setFiles(const std::string& folder, const std::vector<std::string>& names) {
  const bool sameFolder = folder == folder_;
  const bool same = sameFolder && std::ranges::equal(names, rows_, {}, {}, &Row::name);
  for (Row& row : rows_) row.pictureIsFresh = row.figuresAreFresh = false;
  if (same) return;
  beginResetModel();
  std::vector<Row> before = std::exchange(rows_, {});
  if (!sameFolder) pictures_.clear();
  rows_.reserve(names.size());
  for (const std::string& name : names) {
    const int known = sameFolder ? rowOf(name) : -1;
    Row row;
    if (known >= 0) row = std::move(before[static_cast<size_t>(known)]);
    row.name = name;
    row.text = toQString(name);
    rows_.push_back(std::move(row));
  }
  folder_ = folder;
  places_.clear();
  for (size_t i = 0; i < rows_.size(); ++i) places_[rows_[i].name] = static_cast<int>(i);
  endResetModel();
}

int FolderModel::rowOf(const std::string& name) const {
  const auto found = places_.find(name);
  return found == places_.end() ? -1 : found->second;
}

bool FolderModel::wantsPicture(size_t row) const {
  const Row& one = rows_[row];
  const bool isHere = !one.error.isEmpty() || pictures_.contains(QByteArray::fromStdString(one.name));
  return !one.pictureIsFresh || !isHere;
}

void FolderModel::take(const std::vector<News>& news) {
  int first = rowCount(), last = -1;
  for (const News& one : news) {
    const int place = rowOf(one.name);
    if (place < 0) continue;  // it went away meanwhile
    Row& row = rows_[static_cast<size_t>(place)];
    const QByteArray key = QByteArray::fromStdString(one.name);
    row.error = one.thumbnail.error;
    row.bytes = one.thumbnail.bytes;
    if (one.kind == ThumbnailRequest::picture) row.pictureIsFresh = true;
    if (one.kind == ThumbnailRequest::figures) row.figuresAreFresh = true;
    if (one.thumbnail.figures || !row.error.isEmpty()) row.figures = one.thumbnail.figures;
    if (!one.thumbnail.picture.isNull()) {
      auto* pixmap = new QPixmap(QPixmap::fromImage(one.thumbnail.picture));
      pixmap->setDevicePixelRatio(scale_);
      pictures_.insert(key, pixmap);
    } else if (!row.error.isEmpty()) {
      pictures_.remove(key);
    }
    first = std::min(first, place);
    last = std::max(last, place);
  }
  if (last >= 0) emit dataChanged(index(first), index(last));
}

void FolderModel::setShown(const std::string& name) {
  const int before = rowOf(shown_), now = rowOf(name);
  shown_ = name;
  for (const int row : {before, now})
    if (row >= 0) emit dataChanged(index(row), index(row), {Qt::FontRole});
}

int FolderModel::failures() const {
  return static_cast<int>(std::ranges::count_if(rows_, [](const Row& row) { return !row.error.isEmpty(); }));
}

int FolderModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QString FolderModel::toolTip(const Row& row) const {
  QString tip = row.text;
  if (row.bytes > 0) tip += '\n' + toQString(byteSize(row.bytes));
  if (!row.error.isEmpty()) return tip + "\nDoes not load: " + row.error;
  if (!row.figures) return tip;
  tip += '\n' + row.figures->type + '\n' + counted(row.figures->triangles, " triangle", " triangles");
  if (row.figures->missingTextures > 0)
    tip += '\n' + counted(row.figures->missingTextures, " texture missing", " textures missing");
  return tip;
}

QVariant FolderModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const Row& row = rows_[static_cast<size_t>(index.row())];
  if (role == Qt::DisplayRole) return row.text;
  if (role == Qt::ToolTipRole) return "<p style='white-space:pre'>" + toolTip(row).toHtmlEscaped() + "</p>";
  if (role == Qt::AccessibleDescriptionRole) return toolTip(row);
  if (role == Qt::DecorationRole) {
    const QPixmap* picture = pictures_.object(QByteArray::fromStdString(row.name));
    return picture ? *picture : row.error.isEmpty() ? empty_ : broken_;
  }
  if (role == Qt::FontRole && row.name == shown_) {
    QFont font = QApplication::font();
    font.setBold(true);
    return font;
  }
  return {};
}

FilteredFolder::FilteredFolder(FolderModel& files, QObject* parent)
    : QSortFilterProxyModel(parent), files_(files) {
  setSourceModel(&files);
}

void FilteredFolder::setFilter(const FolderFilter& filter) {
  filter_ = filter;
  invalidateFilter();
}

std::vector<size_t> FilteredFolder::unknownRows() const {
  std::vector<size_t> unknown;
  if (!filter_.needsFigures()) return unknown;
  for (size_t i = 0; i < files_.rows().size(); ++i) {
    const FolderModel::Row& row = files_.rows()[i];
    if (!row.figuresAreFresh && filter_.acceptsName(row.text)) unknown.push_back(i);
  }
  return unknown;
}

bool FilteredFolder::filterAcceptsRow(int row, const QModelIndex&) const {
  const FolderModel::Row& file = files_.rows()[static_cast<size_t>(row)];
  if (!filter_.acceptsName(file.text)) return false;
  return !filter_.needsFigures() || (file.figures && filter_.acceptsFigures(*file.figures));
}

}  // namespace facet
