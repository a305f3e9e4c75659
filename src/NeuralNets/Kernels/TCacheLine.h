#pragma once

#include <cstddef>

namespace kiln {

// The unit in which memory enters caches. Loops run faster over buffers that begin where a line
// does, since no register is then loaded from two lines; such a buffer is a vector of these.
struct alignas(64) TCacheLine {
  static constexpr std::size_t kValues = 8;

  // How many lines so many values take.
  static constexpr std::size_t LinesOf(std::size_t values) {
    return (values + kValues - 1) / kValues;
  }

  double values[kValues];
};

}  // namespace kiln
