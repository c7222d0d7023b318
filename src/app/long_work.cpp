#include "app/long_work.h"

#include <utility>

namespace facet {

namespace {
thread_local LongWork* workOfThisThread = nullptr;

MessageBoxAnswer answerOfNobody(const BoxRequest& box) {
  return (box.flags & MB_YESNO) != 0 ? IDNO : IDOK;
}
}  // namespace

LongWork::LongWork(std::function<void()> work) : thread_([this, work = std::move(work)] { run(work); }) {}

LongWork::~LongWork() {
  abandon();
  if (thread_.joinable()) thread_.join();
}

LongWork* LongWork::ofThisThread() {
  return workOfThisThread;
}

void LongWork::run(const std::function<void()>& work) {
  workOfThisThread = this;
  std::exception_ptr failure;
  try {
    work();
  } catch (...) {
    failure = std::current_exception();
  }
  const std::lock_guard lock(mutex_);
  failure_ = failure;
  ended_ = true;
  changed_.notify_all();
}

bool LongWork::endsWithin(std::chrono::milliseconds time) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, time, [&] { return ended_ || box_; }) && ended_;
}

std::optional<std::string> LongWork::takeStatus() {
  const std::lock_guard lock(mutex_);
  return std::exchange(status_, {});
}

void LongWork::answerBox(const std::function<MessageBoxAnswer(const BoxRequest&)>& show) {
  std::unique_lock lock(mutex_);
  if (!box_) return;
  const BoxRequest box = *std::exchange(box_, {});
  lock.unlock();
  const MessageBoxAnswer answer = show(box);
  lock.lock();
  answer_ = answer;
  changed_.notify_all();
}

void LongWork::finish() {
  thread_.join();
  if (failure_) std::rethrow_exception(failure_);
}

void LongWork::abandon() {
  const std::lock_guard lock(mutex_);
  abandoned_ = true;
  changed_.notify_all();
}

void LongWork::setStatus(std::string_view text) {
  const std::lock_guard lock(mutex_);
  status_ = text;
}

MessageBoxAnswer LongWork::messageBox(const BoxRequest& box) {
  std::unique_lock lock(mutex_);
  answer_.reset();
  box_ = box;
  changed_.notify_all();
  changed_.wait(lock, [&] { return answer_ || abandoned_; });
  return answer_.value_or(answerOfNobody(box));
}

}  // namespace facet
