#include "app/file_watch.h"

#include "app/dialogs.h"

namespace facet {

namespace fs = std::filesystem;

FileWatch::FileWatch(QObject* parent) : QObject(parent) {
  constexpr int moment = 300;  // ms
  quiet_.setSingleShot(true);
  quiet_.setInterval(moment);
  connect(&quiet_, &QTimer::timeout, this, &FileWatch::compare);
  for (const auto signal : {&QFileSystemWatcher::fileChanged, &QFileSystemWatcher::directoryChanged})
    connect(&watcher_, signal, &quiet_, qOverload<>(&QTimer::start));
}

void FileWatch::watch(const std::vector<std::string>& files) {
  quiet_.stop();
  files_ = files;
  const QStringList before = watcher_.files() + watcher_.directories();
  if (!before.isEmpty()) watcher_.removePaths(before);
  follow();
  told_ = seen_ = look();
}

/// A file that was replaced is another one to the watcher.
void FileWatch::follow() {
  QStringList paths;
  for (const std::string& file : files_)
    paths << toQString(file) << toQString(fs::path(file).parent_path().string());
  paths.removeDuplicates();
  for (const QString& watched : watcher_.files() + watcher_.directories()) paths.removeAll(watched);
  if (!paths.isEmpty()) watcher_.addPaths(paths);
}

std::vector<FileWatch::State> FileWatch::look() const {
  std::vector<State> states;
  for (const std::string& file : files_) {
    State state;
    std::error_code absent;
    state.time = fs::last_write_time(file, absent);
    if (!absent) state.size = fs::file_size(file, absent);
    states.push_back(absent ? State() : state);
  }
  return states;
}

void FileWatch::compare() {
  follow();
  std::vector<State> now = look();
  if (now != std::exchange(seen_, now)) return quiet_.start();  // it is still being written
  if (now == std::exchange(told_, now)) return;
  emit changed();
}

}  // namespace facet
