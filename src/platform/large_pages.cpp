#include "platform/large_pages.h"

#include <cstdlib>

#if defined(__linux__) && defined(__GLIBC__)

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <climits>
#include <cstdint>

namespace facet {

void preferLargePages() {
  constexpr int reserve = 1 << 30, page = 2 << 20;  // addresses only: what is never touched takes no memory
  constexpr int separately = 32 << 20;              // blocks from this size on go back when they are freed
  if (sbrk(reserve) == reinterpret_cast<void*>(-1)) return;  // where addresses are limited all stays as it is
  sbrk(-reserve);
  mallopt(M_MMAP_THRESHOLD, separately);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  mallopt(M_TOP_PAD, reserve);
  const auto start = reinterpret_cast<uintptr_t>(sbrk(0));
  void* volatile block = std::malloc(1 << 20);  // more than the heap has room for: it takes the reserve
  std::free(block);
  mallopt(M_TOP_PAD, page);
  const uintptr_t first = (start + page - 1) / page * page, end = reinterpret_cast<uintptr_t>(sbrk(0));
  if (first < end) madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

}  // namespace facet

#else

namespace facet {

void preferLargePages() {}

}  // namespace facet

#endif
