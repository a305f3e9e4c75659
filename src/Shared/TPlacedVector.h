#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <vector>

namespace kiln {

namespace placed_internal {

// Smaller ones gain too little for what it takes to place them.
inline constexpr std::size_t kPlacedFrom = 1024;

void* Allocate(std::size_t bytes);
void Free(void* memory, std::size_t bytes);

}  // namespace placed_internal

// Places what loops over many numbers read: at the beginning of a cache line, and buffers of
// several MiB on pages that are themselves so large, where the system has them. A processor that
// goes through a matrix then looks up a place every 2 MiB instead of every 4 KiB.
template <typename T>
struct TPlacedAllocator {
  // NOLINTBEGIN(readability-identifier-naming): the standard library asks for these names
  using value_type = T;

  TPlacedAllocator() = default;
  template <typename TOther>
  explicit TPlacedAllocator(const TPlacedAllocator<TOther>&) {}

  T* allocate(std::size_t n) {
    if (n < placed_internal::kPlacedFrom / sizeof(T)) return std::allocator<T>().allocate(n);
    if (n > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
    return static_cast<T*>(placed_internal::Allocate(n * sizeof(T)));
  }

  void deallocate(T* memory, std::size_t n) {
    if (n < placed_internal::kPlacedFrom / sizeof(T)) {
      return std::allocator<T>().deallocate(memory, n);
    }
    placed_internal::Free(memory, n * sizeof(T));
  }
  // NOLINTEND(readability-identifier-naming)

  friend bool operator==(const TPlacedAllocator&, const TPlacedAllocator&) { return true; }
};

template <typename T>
using TPlacedVector = std::vector<T, TPlacedAllocator<T>>;

}  // namespace kiln
