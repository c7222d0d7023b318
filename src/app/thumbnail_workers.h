#pragma once

#include <QObject>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "app/thumbnails.h"

namespace facet {

/// Threads that get thumbnails, one for each core but one, while nothing else wants the cores. They sleep
/// while nothing is wanted.
class ThumbnailWorkers final : public QObject {
  Q_OBJECT

 public:
  explicit ThumbnailWorkers(const ThumbnailCache& cache, QObject* parent = nullptr);

  /// Waits for the pictures that are being drawn.
  ~ThumbnailWorkers() override;

  /// From now on these are wanted, the first ones first; what was wanted before and has not begun is dropped.
  void want(std::vector<ThumbnailRequest> requests, const std::shared_ptr<const ModelSearch>& search);

  struct Result {
    ThumbnailRequest request;
    Thumbnail thumbnail;
  };

  /// What has been got since the last call.
  std::vector<Result> take();

 signals:
  /// There is something to take; not sent again before it is taken.
  void ready();

 private:
  struct Task {
    ThumbnailRequest request;
    std::shared_ptr<const ModelSearch> search;
    bool operator==(const Task& other) const {
      return request.path == other.request.path && request.kind == other.request.kind &&
             search == other.search;
    }
  };

  void start();
  void work();

  const ThumbnailCache cache_;
  std::vector<std::thread> threads_;

  std::mutex mutex_;  // of what follows
  std::condition_variable wanted_;
  std::deque<Task> tasks_;
  std::vector<Task> begun_;
  std::vector<Result> results_;
  bool stopping_ = false;
};

}  // namespace facet
