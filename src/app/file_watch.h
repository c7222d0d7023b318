#pragma once

#include <QFileSystemWatcher>
#include <QTimer>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace facet {

/// Tells when files have changed, once they have been left alone for a moment: whoever writes one is done.
class FileWatch final : public QObject {
  Q_OBJECT

 public:
  explicit FileWatch(QObject* parent);

  /// Watches these from now on, as they are now, and no others.
  void watch(const std::vector<std::string>& files);

 signals:
  void changed();

 private:
  /// A file as it is found; of one that is not there, all is 0.
  struct State {
    std::filesystem::file_time_type time{};
    uint64_t size = 0;
    bool operator==(const State&) const = default;
  };

  std::vector<State> look() const;
  void follow();
  void compare();

  QFileSystemWatcher watcher_;  ///< of the files, and of their folders, where new ones take their places
  QTimer quiet_;
  std::vector<std::string> files_;
  std::vector<State> told_, seen_;
};

}  // namespace facet
