#pragma once

namespace facet {

/// While it lives, memory runs out on this thread: `allocations` by operator new still succeed, all others
/// throw std::bad_alloc.
class FailingMemory {
 public:
  explicit FailingMemory(int allocations);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
};

}  // namespace facet
