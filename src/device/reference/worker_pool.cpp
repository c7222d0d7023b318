#include "device/reference/worker_pool.h"

#include <algorithm>
#include <utility>

namespace facet {

WorkerPool::WorkerPool(uint32_t threads) {
  if (threads == 0) threads = std::max(std::thread::hardware_concurrency(), 1u);
  try {
    threads_.reserve(threads - 1);
    for (uint32_t i = 1; i < threads; ++i) threads_.emplace_back([this] { work(); });
  } catch (const std::exception&) {
    // Fewer threads do the same work.
  }
}

WorkerPool::~WorkerPool() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  started_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::run(size_t count, const std::function<void(size_t)>& part) {
  if (count <= 1 || threads_.empty()) {
    for (size_t i = 0; i < count; ++i) part(i);
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    part_ = &part;
    count_ = count;
    next_ = 0;
    busy_ = threads_.size();
    ++job_;
  }
  started_.notify_all();
  takeParts();
  std::unique_lock lock(mutex_);
  finished_.wait(lock, [this] { return busy_ == 0; });
  if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void WorkerPool::takeParts() {
  try {
    for (size_t i = next_++; i < count_; i = next_++) (*part_)(i);
  } catch (...) {
    const std::lock_guard lock(mutex_);
    failure_ = std::current_exception();
    next_ = count_;
  }
}

void WorkerPool::work() {
  uint64_t done = 0;
  std::unique_lock lock(mutex_);
  while (true) {
    started_.wait(lock, [&] { return stopping_ || job_ != done; });
    if (stopping_) return;
    done = job_;
    lock.unlock();
    takeParts();
    lock.lock();
    if (--busy_ == 0) finished_.notify_one();
  }
}

}  // namespace facet
