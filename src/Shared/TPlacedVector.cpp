#include "Shared/TPlacedVector.h"

#include <sys/mman.h>

namespace kiln::placed_internal {

namespace {

constexpr std::size_t kLargeFrom = std::size_t{4} << 20;
constexpr std::align_val_t kLine{64};
constexpr std::align_val_t kLargePage{std::size_t{2} << 20};

}  // namespace

void* Allocate(std::size_t bytes) {
  if (bytes < kLargeFrom) return ::operator new(bytes, kLine);
  void* const memory = ::operator new(bytes, kLargePage);
#ifdef MADV_HUGEPAGE
  madvise(memory, bytes, MADV_HUGEPAGE);  // advice: without it all works as well, if slower
#endif
  return memory;
}

void Free(void* memory, std::size_t bytes) {
  ::operator delete(memory, bytes < kLargeFrom ? kLine : kLargePage);
}

}  // namespace kiln::placed_internal
