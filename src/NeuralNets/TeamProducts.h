#pragma once

#include <cstddef>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

// Kernels().multiply, by a team where the product is large: each worker makes some rows of it, with
// the same digits.
void MultiplyByTeam(std::size_t rows, std::size_t depth, std::size_t columns, const TMatrixView& a,
                    const double* b, std::size_t b_stride, double* c, std::size_t c_stride);

}  // namespace kiln
