#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace facet {

/// Threads that share out the parts of one job at a time. The calling thread is one of them.
class WorkerPool {
 public:
  /// `threads` counts the calling thread; 0 means one for each core. There may be fewer than asked for.
  explicit WorkerPool(uint32_t threads);
  ~WorkerPool();
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  /// Calls part(i) once for each i below `count`, in any order and on any thread; returns when all are done.
  /// When a part throws, further ones are left out and one exception comes out here.
  void run(size_t count, const std::function<void(size_t)>& part);

 private:
  void work();
  void takeParts();

  std::mutex mutex_;
  std::condition_variable started_, finished_;
  const std::function<void(size_t)>* part_ = nullptr;
  size_t count_ = 0;
  std::atomic<size_t> next_ = 0;
  uint64_t job_ = 0;
  size_t busy_ = 0;
  bool stopping_ = false;
  std::exception_ptr failure_;
  std::vector<std::thread> threads_;
};

}  // namespace facet
