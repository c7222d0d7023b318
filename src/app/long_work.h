#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "platform/desktop.h"

namespace facet {

/// A box that a work wants shown.
struct BoxRequest {
  std::string text, caption;
  unsigned flags = 0;
};

/// A work on a thread of its own. What it says waits here for the thread of the window.
class LongWork {
 public:
  /// Begins at once.
  explicit LongWork(std::function<void()> work);
  /// Waits for the end; boxes are answered as if there were no desktop.
  ~LongWork();
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;

  /// The work that the calling thread does, or none.
  static LongWork* ofThisThread();

  // For the thread of the window.

  /// True when the work ends within this time.
  bool endsWithin(std::chrono::milliseconds time);

  /// The last status text since this was asked, or none.
  std::optional<std::string> takeStatus();

  /// Shows the box that the work waits for, if there is one.
  void answerBox(const std::function<MessageBoxAnswer(const BoxRequest&)>& show);

  /// Waits for the end, and throws what the work has thrown.
  void finish();

  /// Nobody listens from now on.
  void abandon();

  // For the thread of the work.

  void setStatus(std::string_view text);
  MessageBoxAnswer messageBox(const BoxRequest& box);

 private:
  void run(const std::function<void()>& work);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::optional<std::string> status_;
  std::optional<BoxRequest> box_;
  std::optional<MessageBoxAnswer> answer_;
  bool ended_ = false, abandoned_ = false;
  std::exception_ptr failure_;
  std::thread thread_;  // last: it uses the others
};

}  // namespace facet
