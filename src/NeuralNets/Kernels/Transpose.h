#pragma once

#include <algorithm>
#include <cstddef>

namespace kiln {

// to[i * to_stride + p] = row(p)[i], for p < rows and i < columns, by strips of columns that the
// nearest cache holds in both shapes. `row` gives a pointer to the values of a row.
template <typename TRow>
void Transpose(std::size_t rows, std::size_t columns, const TRow& row, double* to,
               std::size_t to_stride) {
  constexpr std::size_t kStrip = 8;
  for (std::size_t first = 0; first < columns; first += kStrip) {
    const std::size_t last = std::min(first + kStrip, columns);
    for (std::size_t p = 0; p < rows; ++p) {
      const double* from = row(p);
      for (std::size_t i = first; i < last; ++i) to[i * to_stride + p] = from[i];
    }
  }
}

}  // namespace kiln
