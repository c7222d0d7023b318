#include "app/window_memory.h"

#include <QMainWindow>
#include <QSettings>
#include <filesystem>

#include "app/dialogs.h"
#include "commands/commands.h"

namespace facet {

namespace {

constexpr qsizetype mostFiles = 10;
constexpr const char *filesKey = "recentFiles", *geometryKey = "window/geometry", *docksKey = "window/docks",
                     *orbitsKey = "navigation/orbits", *keepCameraKey = "navigation/keepCamera";

QSettings settings() {
  return QSettings("facetbench", "vxmviewer");
}

}  // namespace

RecentFiles::RecentFiles(const QString& title, QWidget* parent) : QMenu(title, parent) {
  setToolTipsVisible(true);
  connect(this, &QMenu::aboutToShow, this, &RecentFiles::fill);
}

void RecentFiles::add(const std::string& path) {
  const QByteArray bytes = QByteArray::fromStdString(path);
  opened_.removeAll(bytes);
  opened_.prepend(bytes);
  opened_.resize(std::min(opened_.size(), mostFiles));
}

QList<QByteArray> RecentFiles::all() const {
  QList<QByteArray> files = opened_;
  for (const QVariant& file : settings().value(filesKey).toList())
    if (!files.contains(file.toByteArray())) files.append(file.toByteArray());
  files.resize(std::min(files.size(), mostFiles));
  return files;
}

void RecentFiles::save() {
  if (opened_.isEmpty()) return;
  QVariantList values;
  for (const QByteArray& file : all()) values.append(file);
  settings().setValue(filesKey, values);
}

/// Files of the same name are told apart by their tool tips, as are those that are gone.
void RecentFiles::fill() {
  clear();
  int number = 0;
  for (const QByteArray& file : all()) {
    const std::string path = file.toStdString();
    std::error_code error;
    const bool exists = std::filesystem::exists(path, error);
    const QString name = toQString(std::filesystem::path(path).filename().string()).replace('&', "&&");
    QAction* action = addAction(QString("&%1  %2%3").arg(++number % 10).arg(name, exists ? "" : " (gone)"));
    action->setToolTip(toQString(path).toHtmlEscaped());
    action->setStatusTip(toQString(path));
    action->setEnabled(exists);
    connect(action, &QAction::triggered, this, [this, path] { emit openRequested(path); });
  }
  if (number == 0) addAction("(none yet)")->setEnabled(false);
}

void restoreNavigation(Viewer& viewer) {
  const QSettings stored = settings();
  viewer.orbits = stored.value(orbitsKey, viewer.orbits).toBool();
  viewer.keepCamera = stored.value(keepCameraKey, viewer.keepCamera).toBool();
}

void restoreWindow(QMainWindow& window) {
  const QSettings stored = settings();
  window.restoreGeometry(stored.value(geometryKey).toByteArray());
  window.restoreState(stored.value(docksKey).toByteArray());
}

void saveWindow(const QMainWindow& window, const Viewer& viewer) {
  QSettings stored = settings();
  if (!viewer.fullscreenMode) {
    stored.setValue(geometryKey, window.saveGeometry());
    stored.setValue(docksKey, window.saveState());
  }
  stored.setValue(orbitsKey, viewer.orbits);
  stored.setValue(keepCameraKey, viewer.keepCamera);
}

}  // namespace facet
