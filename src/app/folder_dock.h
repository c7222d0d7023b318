#pragma once

#include <QDockWidget>
#include <QFileSystemWatcher>
#include <QTimer>
#include <memory>
#include <string>

#include "app/thumbnails.h"

class QLabel;
class QLineEdit;
class QListView;

namespace facet {

class FilteredFolder;
class FolderModel;
class ThumbnailWorkers;

/// The models of a folder as small pictures: that of the model which is shown. While it is hidden it looks at
/// no file and draws nothing.
class FolderDock final : public QDockWidget {
  Q_OBJECT

 public:
  explicit FolderDock(QWidget* parent = nullptr);
  ~FolderDock() override;

  /// Where the models' textures are looked for; relative base paths start at the folder.
  void setTextures(const BasePaths& basePaths, bool near);

  /// The model that is shown now, an absolute path: its folder is listed, its row marked. An empty path: none
  /// is.
  void setCurrent(const std::string& path);

 signals:
  /// A model of the folder was chosen; its absolute path.
  void openRequested(const std::string& path);

  /// What is wrong with the folder, in one line; empty where nothing is.
  void note(const QString& text);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void createContents();
  void look();
  void watch();
  void scrollToCurrent();
  void filter();
  void request();
  void takeResults();
  void tell();
  void open(const QModelIndex& index);
  std::pair<int, int> visibleRows() const;

  BasePaths basePaths_;
  bool near_ = true;
  std::string folder_, name_;  ///< of the model that is shown
  bool seen_ = false;          ///< the dock is visible
  bool gone_ = false;          ///< the folder is not there any more
  QString noted_;

  QLineEdit* filterField_;
  QListView* view_;
  QLabel* line_;
  FolderModel* model_;
  FilteredFolder* filtered_;
  QFileSystemWatcher watcher_;
  // Each fires once after what it takes together.
  QTimer lookSoon_, requestSoon_, takeSoon_, filterSoon_;
  std::shared_ptr<const ModelSearch> search_;
  std::unique_ptr<ThumbnailWorkers> workers_;  // the last member: they end before the others go
};

}  // namespace facet
