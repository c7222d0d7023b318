#include "platform/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace facet {
namespace {

struct Threads : ::testing::TestWithParam<size_t> {
  Threads() { setThreadCount(GetParam()); }
  ~Threads() override { setThreadCount(0); }
};
INSTANTIATE_TEST_SUITE_P(OneAndMany, Threads, ::testing::Values(1, 2, 5));

TEST_P(Threads, DoEachPartOnceAlsoWhereWorkIsNested) {
  std::vector<std::atomic<int>> calls(40 * 30);
  std::atomic<size_t> atWork = 0, most = 0;
  parallelFor(40, [&](size_t i) {
    parallelFor(30, [&](size_t k) {
      const size_t now = ++atWork;
      size_t before = most;
      while (before < now && !most.compare_exchange_weak(before, now)) continue;
      ++calls[i * 30 + k];
      --atWork;
    });
  });
  for (const auto& count : calls) EXPECT_EQ(count, 1);
  EXPECT_LE(most, GetParam());
}

TEST_P(Threads, PassAnExceptionOnAndGoOn) {
  std::atomic<int> calls = 0;
  const auto failing = [&](size_t i) {
    ++calls;
    if (i == 3) throw std::runtime_error("third");
  };
  EXPECT_THROW(parallelFor(1000, failing), std::runtime_error);
  calls = 10;
  parallelFor(7, [&](size_t) { ++calls; });
  EXPECT_EQ(calls, 17);
}

/// Numbers 0 .. count - 1 through a pipeline that ends or fails where it is told to.
std::string piped(int count, int endAt, int failAt) {
  std::string text;
  int next = 0;
  orderedPipeline<int>(
      SIZE_MAX, [&](int& piece) { return next < count ? (piece = next++, true) : false; },
      [&](int& piece) {
        if (piece == failAt) throw std::runtime_error("fails");
        if (piece % 7 == 0) std::this_thread::yield();
      },
      [&](int& piece) {
        text += std::to_string(piece) + ' ';
        return piece != endAt;
      });
  return text;
}

TEST_P(Threads, KeepTheOrderOfALine) {
  std::string all;
  for (int i = 0; i < 5000; ++i) all += std::to_string(i) + ' ';
  EXPECT_EQ(piped(5000, -1, -1), all);
  EXPECT_EQ(piped(5000, 3, -1), "0 1 2 3 ");
  EXPECT_EQ(piped(0, -1, -1), "");
  EXPECT_THROW(piped(5000, -1, 40), std::runtime_error);
}

TEST_P(Threads, KeepTheLimitOfOneLoop) {
  std::mutex mutex;
  std::set<std::thread::id> ids;
  parallelFor(
      1000,
      [&](size_t) {
        const std::lock_guard lock(mutex);
        ids.insert(std::this_thread::get_id());
      },
      1);
  EXPECT_EQ(ids.size(), 1u);
}

}  // namespace
}  // namespace facet
