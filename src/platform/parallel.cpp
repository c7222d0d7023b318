#include "platform/parallel.h"

#include <atomic>
#include <exception>
#include <thread>
#include <utility>
#include <vector>

namespace facet {

namespace {

/// One parallelFor that runs: lives on the stack of who asked for it.
struct Job {
  size_t count, helpers;  // helpers: threads besides the asking one that may still join
  detail::CallWork call;
  const void* work;
  std::atomic<size_t> next = 0;
  size_t active = 0;  // helpers at work, under the pool's mutex
  std::exception_ptr failure;
  Job* older = nullptr;
};

class Pool {
 public:
  ~Pool() {
    {
      const std::lock_guard lock(mutex_);
      stopping_ = true;
    }
    opened_.notify_all();
  }

  void run(Job& job) {
    {
      const std::lock_guard lock(mutex_);
      startThreads();
      job.older = std::exchange(newest_, &job);
    }
    opened_.notify_all();
    takeFrom(job);
    std::unique_lock lock(mutex_);
    Job** link = &newest_;
    while (*link != &job) link = &(*link)->older;
    *link = job.older;
    left_.wait(lock, [&] { return job.active == 0; });
    if (job.failure) std::rethrow_exception(job.failure);
  }

 private:
  /// Threads start when they are first of use. Where no more are to be had, fewer do the same work.
  void startThreads() {
    try {
      threads_.reserve(threadCount() - 1);
      while (threads_.size() + 1 < threadCount()) threads_.emplace_back([this] { help(); });
    } catch (const std::exception&) {
    }
  }

  void takeFrom(Job& job) {
    try {
      for (size_t i = job.next++; i < job.count; i = job.next++) job.call(job.work, i);
    } catch (...) {
      job.next = job.count;
      const std::lock_guard lock(mutex_);
      job.failure = std::current_exception();
    }
  }

  /// The newest job that has something left: what is nested ends first.
  Job* openJob() {
    Job* job = newest_;
    while (job != nullptr && (job->helpers == 0 || job->next >= job->count)) job = job->older;
    return job;
  }

  void help() {
    std::unique_lock lock(mutex_);
    while (true) {
      Job* job = nullptr;
      opened_.wait(lock, [&] { return stopping_ || (job = openJob()) != nullptr; });
      if (stopping_) return;
      ++job->active;
      --job->helpers;
      lock.unlock();
      takeFrom(*job);
      lock.lock();
      ++job->helpers;
      if (--job->active == 0) left_.notify_all();
    }
  }

  std::mutex mutex_;
  std::condition_variable opened_, left_;
  Job* newest_ = nullptr;
  bool stopping_ = false;
  std::vector<std::jthread> threads_;  // the last member: they end before the others go
};

std::atomic<size_t> threadLimit = 0;

}  // namespace

size_t threadCount() {
  static const size_t cores = std::max(std::thread::hardware_concurrency(), 1U);
  const size_t limit = threadLimit;
  return limit == 0 ? cores : limit;
}

void setThreadCount(size_t threads) {
  threadLimit = threads;
}

void detail::runInPool(size_t count, size_t most, CallWork call, const void* work) {
  const size_t threads = std::min({count, most, threadCount()});
  if (threads <= 1) {
    for (size_t i = 0; i < count; ++i) call(work, i);
    return;
  }
  static Pool pool;
  Job job{.count = count, .helpers = threads - 1, .call = call, .work = work, .failure = {}};
  pool.run(job);
}

bool detail::Turns::await(uint64_t number) {
  std::unique_lock lock(mutex_);
  turn_.wait(lock, [&] { return stopped_ || finished_ == number; });
  return !stopped_;
}

void detail::Turns::pass(bool goOn) {
  {
    const std::lock_guard lock(mutex_);
    ++finished_;
    stopped_ = stopped_ || !goOn;
  }
  turn_.notify_all();
}

void detail::Turns::stop() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  turn_.notify_all();
}

}  // namespace facet
