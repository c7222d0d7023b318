#pragma once

#include <QByteArray>
#include <QList>
#include <QMenu>
#include <string>

class QMainWindow;

// What the window remembers from one run to the next, in the user's settings.

namespace facet {

struct Viewer;

/// The models that were opened last, the newest first.
class RecentFiles final : public QMenu {
  Q_OBJECT

 public:
  RecentFiles(const QString& title, QWidget* parent);

  /// A model was opened.
  void add(const std::string& path);

  /// Puts what was opened on top of what other windows remembered meanwhile.
  void save();

 signals:
  void openRequested(const std::string& path);

 private:
  QList<QByteArray> all() const;
  void fill();

  QList<QByteArray> opened_;  ///< paths, in this window
};

/// How the mouse moves the camera.
void restoreNavigation(Viewer& viewer);

/// Size, place and docks; those of the first start stay where nothing is remembered.
void restoreWindow(QMainWindow& window);

/// Both. A full screen is not remembered.
void saveWindow(const QMainWindow& window, const Viewer& viewer);

}  // namespace facet
