#include "device/reference/worker_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <stdexcept>

#include "support/failing_memory.h"

namespace facet {
namespace {

TEST(WorkerPool, DoesAllPartsWithTheThreadsItGot) {
  for (int allocations = 0; allocations < 24; ++allocations) {
    SCOPED_TRACE(allocations);
    std::optional<WorkerPool> pool;
    {
      const FailingMemory memory(allocations);
      pool.emplace(8);
    }
    std::atomic<size_t> sum = 0;
    pool->run(100, [&](size_t part) { sum += part; });
    EXPECT_EQ(sum, 4950u);
  }
}

TEST(WorkerPool, HandsOnWhatAPartThrowsAndWorksOn) {
  WorkerPool pool(3);
  for (int round = 0; round < 20; ++round) {
    EXPECT_THROW(pool.run(100, [](size_t i) { i % 7 == 3 ? throw std::bad_alloc() : void(); }),
                 std::bad_alloc);
    std::atomic<size_t> sum = 0;
    pool.run(100, [&](size_t i) { sum += i; });
    EXPECT_EQ(sum, 4950u);
  }
}

}  // namespace
}  // namespace facet
