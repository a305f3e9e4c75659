#pragma once

#include <cstddef>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

// Kernels().multiply of a product that is worth sharing: each worker makes some rows of it.
void ShareProduct(std::size_t rows, std::size_t depth, std::size_t columns, const TMatrixView& a,
                  const double* b, std::size_t b_stride, double* c, std::size_t c_stride);

// Kernels().multiply, by a team where the product is large, with the same digits. The products of
// small networks cost so little that even asking the team would be felt.
inline void MultiplyByTeam(std::size_t rows, std::size_t depth, std::size_t columns,
                           const TMatrixView& a, const double* b, std::size_t b_stride, double* c,
                           std::size_t c_stride) {
  constexpr std::size_t kLarge = std::size_t{1} << 20;
  const bool is_large = rows * depth * columns >= kLarge;
  const auto multiply = is_large ? &ShareProduct : Kernels().multiply;
  multiply(rows, depth, columns, a, b, b_stride, c, c_stride);
}

}  // namespace kiln
