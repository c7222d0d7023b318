#pragma once

#include <atomic>
#include <exception>

namespace facet {

/// Ends a work that its user cancelled.
class Cancelled final : public std::exception {
 public:
  const char* what() const noexcept override { return "cancelled"; }
};

/// How far a long work has come, and whether its user has had enough of it. Threads share it.
class Progress {
 public:
  /// From 0 to 1; never goes back.
  float done() const { return done_; }

  /// The work has come so far. Only one thread tells. Throws Cancelled after cancel().
  void reach(float done) {
    if (cancelled_) throw Cancelled();
    if (done > done_) done_ = done;
  }

  void cancel() { cancelled_ = true; }
  bool cancelled() const { return cancelled_; }

 private:
  std::atomic<float> done_ = 0;
  std::atomic<bool> cancelled_ = false;
};

}  // namespace facet
