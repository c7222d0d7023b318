#include "app/thumbnail_workers.h"

#include <algorithm>
#include <utility>

#include "app/viewer_app.h"
#include "platform/parallel.h"
#include "platform/system.h"

namespace facet {

ThumbnailWorkers::ThumbnailWorkers(const ThumbnailCache& cache, QObject* parent)
    : QObject(parent), cache_(cache) {}

ThumbnailWorkers::~ThumbnailWorkers() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wanted_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void ThumbnailWorkers::start() {
  const size_t count = std::max<size_t>(threadCount() - 1, 1);
  while (threads_.size() < count) threads_.emplace_back([this] { work(); });
}

void ThumbnailWorkers::want(std::vector<ThumbnailRequest> requests,
                            const std::shared_ptr<const ModelSearch>& search) {
  if (!requests.empty()) start();
  {
    const std::lock_guard lock(mutex_);
    tasks_.clear();
    for (ThumbnailRequest& request : requests) {
      Task task{std::move(request), search};
      if (std::ranges::find(begun_, task) == begun_.end()) tasks_.push_back(std::move(task));
    }
  }
  wanted_.notify_all();
}

std::vector<ThumbnailWorkers::Result> ThumbnailWorkers::take() {
  const std::lock_guard lock(mutex_);
  return std::exchange(results_, {});
}

void ThumbnailWorkers::work() {
  const Quiet quiet;
  letOthersGoFirst();
  std::unique_lock lock(mutex_);
  while (true) {
    wanted_.wait(lock, [&] { return stopping_ || !tasks_.empty(); });
    if (stopping_) return;
    const Task task = std::move(tasks_.front());
    tasks_.pop_front();
    begun_.push_back(task);
    lock.unlock();
    Thumbnail thumbnail = cache_.get(task.request, *task.search);
    lock.lock();
    begun_.erase(std::ranges::find(begun_, task));
    results_.push_back({task.request, std::move(thumbnail)});
    if (results_.size() == 1) emit ready();
  }
}

}  // namespace facet
