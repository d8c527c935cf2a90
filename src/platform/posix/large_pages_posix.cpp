#include <sys/mman.h>

#include <cstdint>

#include "platform/large_pages.h"

namespace kerno {

void PreferLargePages(void* memory, size_t size) {
  constexpr uintptr_t kLargePage = uintptr_t{2} << 20;
  const auto start = reinterpret_cast<uintptr_t>(memory);
  const uintptr_t first = (start + kLargePage - 1) / kLargePage * kLargePage;
  const uintptr_t last = (start + size) / kLargePage * kLargePage;
  if (first >= last) return;
  // A refusal changes nothing but the speed.
  (void)madvise(static_cast<char*>(memory) + (first - start), last - first, MADV_HUGEPAGE);
}

}  // namespace kerno
