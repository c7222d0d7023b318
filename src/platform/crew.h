#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace facet {

/// Calls work(i) for each i below `count` on a thread of its own, the first on the calling one; returns when
/// all are done. Where no more threads are to be had, fewer are called, so each takes from what is left of
/// the whole work. One of the exceptions thrown comes out here.
template <class Work>
void runCrew(size_t count, Work work) {
  std::mutex mutex;
  std::exception_ptr failure;
  const auto guarded = [&](size_t i) {
    try {
      work(i);
    } catch (...) {
      const std::lock_guard lock(mutex);
      failure = std::current_exception();
    }
  };
  {
    std::vector<std::jthread> helpers;
    try {
      helpers.reserve(count);
      while (helpers.size() + 1 < count) helpers.emplace_back(guarded, helpers.size() + 1);
    } catch (const std::exception&) {
      // No thread or no memory for one: those that started do it all.
    }
    if (count > 0) guarded(0);
  }
  if (failure) std::rethrow_exception(failure);
}

/// Calls work(0) ... work(count - 1) on up to `threads` threads, each taking the next that is left.
template <class Work>
void forEachByCrew(size_t threads, size_t count, Work work) {
  std::atomic<size_t> next = 0;
  runCrew(std::min(threads, count), [&](size_t) {
    for (size_t i = next++; i < count; i = next++) work(i);
  });
}

}  // namespace facet
