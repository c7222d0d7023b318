#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>

// The process's threads. There is one pool, as large as the machine has cores, and every room takes its share
// from it: a batch of models, the pieces of one model, the bands of one picture. The thread that asks works
// along, so nested work never waits for a free thread, and there are never more threads at work than cores.

namespace facet {

/// Threads that work at a time, the asking one included: one a core, or what setThreadCount said.
size_t threadCount();

/// Limits the threads from now on; 0 means one a core. Not while something runs in the pool.
void setThreadCount(size_t threads);

namespace detail {
using CallWork = void (*)(const void* work, size_t i);
void runInPool(size_t count, size_t most, CallWork call, const void* work);

/// Who begins and who finishes next in a pipeline.
class Turns {
 public:
  /// Calls begin() as the only thread that does; false when it gave nothing more or the line has stopped.
  template <class Begin>
  bool begin(uint64_t& number, Begin begin) {
    const std::lock_guard lock(mutex_);
    if (stopped_ || !begin()) return false;
    number = begun_++;
    return true;
  }
  /// Waits until all numbers before this one are finished; false when the line has stopped.
  bool await(uint64_t number);
  void pass(bool goOn);
  void stop();

 private:
  std::mutex mutex_;
  std::condition_variable turn_;
  uint64_t begun_ = 0, finished_ = 0;
  bool stopped_ = false;
};
}  // namespace detail

/// Calls work(i) once for each i below `count`, in any order, on up to `most` threads; returns when all are
/// done. When a call throws, those that have not begun are left out, and one exception comes out here.
template <class Work>
void parallelFor(size_t count, const Work& work, size_t most = SIZE_MAX) {
  detail::runInPool(
      count, most, [](const void* it, size_t i) { (*static_cast<const Work*>(it))(i); }, &work);
}

/// A line of pieces on up to `most` threads. begin(piece) sets one up: in order, one at a time; false when
/// there are no more. make(piece) does the work, at the same time as others. finish(piece) takes the result:
/// in the order of begin, one at a time; false ends the line. Each thread holds one Piece and uses it again
/// and again, so memory does not grow with the line. What a step throws comes out here.
template <class Piece, class Begin, class Make, class Finish>
void orderedPipeline(size_t most, Begin begin, Make make, Finish finish) {
  detail::Turns turns;
  const auto work = [&](size_t) {
    try {
      Piece piece;
      for (uint64_t number; turns.begin(number, [&] { return begin(piece); });) {
        make(piece);
        if (!turns.await(number)) return;
        turns.pass(finish(piece));
      }
    } catch (...) {
      turns.stop();
      throw;
    }
  };
  const size_t threads = std::min(most, threadCount());
  parallelFor(threads, work, threads);
}

}  // namespace facet
