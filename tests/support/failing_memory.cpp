#include "support/failing_memory.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace facet {
namespace {

constexpr int unlimited = std::numeric_limits<int>::max();
thread_local int left = unlimited;

}  // namespace

FailingMemory::FailingMemory(int allocations) {
  left = allocations;
}

FailingMemory::~FailingMemory() {
  left = unlimited;
}

}  // namespace facet

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  using facet::left;
  if (left == 0) return nullptr;
  if (left != facet::unlimited) --left;
  return std::malloc(size);
}

void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
