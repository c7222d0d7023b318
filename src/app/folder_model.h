#pragma once

#include <QAbstractListModel>
#include <QCache>
#include <QPixmap>
#include <QSortFilterProxyModel>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/folder_filter.h"
#include "app/thumbnails.h"

namespace facet {

/// The model files of a folder, in the order of browsing, with what is known of them.
class FolderModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  /// One file. What is known stays shown while it is looked at anew.
  struct Row {
    std::string name;
    QString text;                         ///< the name, for people
    std::optional<ModelFigures> figures;  ///< none yet, or it does not load
    QString error;                        ///< why it does not load, empty where it does or nothing is known
    uint64_t bytes = 0;
    bool pictureIsFresh = false, figuresAreFresh = false;  ///< got since the folder was last looked at
  };

  /// Pictures are `side` pixels wide and high at most, and shown at `scale` pixels for one.
  FolderModel(int side, qreal scale, QObject* parent);

  /// Takes the names of a folder's files. What is known of those of the same folder stays, but is to be asked
  /// for anew.
  void setFiles(const std::string& folder, const std::vector<std::string>& names);

  const std::string& folder() const { return folder_; }
  const std::vector<Row>& rows() const { return rows_; }
  std::string pathOf(size_t row) const { return folder_ + '/' + rows_[row].name; }

  /// The row of a file, -1 where there is none.
  int rowOf(const std::string& name) const;

  /// Whether the row's picture is to be asked for: it is not here, or may be old.
  bool wantsPicture(size_t row) const;

  /// How many pictures stay in memory; those used longest ago go first.
  void keepPictures(int most) { pictures_.setMaxCost(most); }

  /// Takes what was got; dataChanged tells once of all.
  struct News {
    std::string name;
    ThumbnailRequest::Kind kind;
    Thumbnail thumbnail;
  };
  void take(const std::vector<News>& news);

  /// Writes the name of the model that is shown in bold; an empty one, none.
  void setShown(const std::string& name);

  /// How many files are known not to load.
  int failures() const;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 private:
  QString toolTip(const Row& row) const;

  const QPixmap empty_, broken_;
  const qreal scale_;
  std::string folder_, shown_;
  std::vector<Row> rows_;
  std::unordered_map<std::string, int> places_;  ///< rows by name
  QCache<QByteArray, QPixmap> pictures_;         ///< by name
};

/// The files that a filter lets through. Where names alone do not decide, those with figures.
class FilteredFolder final : public QSortFilterProxyModel {
  Q_OBJECT

 public:
  FilteredFolder(FolderModel& files, QObject* parent);

  void setFilter(const FolderFilter& filter);
  const FolderFilter& filter() const { return filter_; }

  /// The files whose figures the filter waits for.
  std::vector<size_t> unknownRows() const;

 protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

 private:
  FolderModel& files_;
  FolderFilter filter_;
};

}  // namespace facet
