#pragma once

namespace facet {

/// While it lives, operator new fails on this thread after this many `allocations`.
class FailingMemory {
 public:
  explicit FailingMemory(int allocations);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;
};

}  // namespace facet
