#include "NeuralNets/Training/TSymmetricMatrix.h"

#include <algorithm>
#include <cmath>

namespace kiln {

namespace {

// Rows that are taken through a product together: the cache keeps them, and the triangle is cut
// into steps of this height.
constexpr std::size_t kPanel = 32;

// Adds B'B to the rows and columns from `first` on.
void AddProductsFrom(TSymmetricMatrix& sum, std::size_t first, const double* rows,
                     std::size_t count) {
  const std::size_t size = sum.Size();
  const std::size_t stride = sum.Stride();
  for (std::size_t i = first; i < size; i += kPanel) {
    const TMatrixView transposed = {rows + i, 1, stride};
    Kernels().multiply(std::min(kPanel, size - i), count, size - i, transposed, rows + i, stride,
                       sum.Row(i) + i, stride);
  }
}

}  // namespace

void TSymmetricMatrix::Clear() {
  std::ranges::fill(values_, 0.0);
}

void TSymmetricMatrix::AddProducts(const double* rows, std::size_t count) {
  AddProductsFrom(*this, 0, rows, count);
}

// Panel by panel: once the rows of a panel are those of U, their products are taken away from all
// rows below. Rows that are still to come hold the negative of what is left of A, so that taking
// away is what the kernel does: adding.
bool TCholesky::Factor(const TSymmetricMatrix& matrix, double damping,
                       std::span<const double> scales) {
  LoadNegative(matrix, damping, scales);
  const std::size_t size = factor_.Size();
  for (std::size_t first = 0; first < size; first += kPanel) {
    const std::size_t last = std::min(first + kPanel, size);
    for (std::size_t row = first; row < last; ++row) {
      if (!FactorRow(first, row)) return false;
    }
    AddProductsFrom(factor_, last, factor_.Row(first), last - first);
  }
  return true;
}

void TCholesky::LoadNegative(const TSymmetricMatrix& matrix, double damping,
                             std::span<const double> scales) {
  for (std::size_t i = 0; i < matrix.Size(); ++i) {
    const double* from = matrix.Row(i);
    double* to = factor_.Row(i);
    for (std::size_t j = i; j < matrix.Size(); ++j) to[j] = -from[j];
    to[i] -= damping * scales[i];
  }
}

// Turns a row into that of U, given the rows of its panel above it.
bool TCholesky::FactorRow(std::size_t first, std::size_t row) {
  const std::size_t stride = factor_.Stride();
  const std::size_t columns = factor_.Size() - row;
  double* values = factor_.Row(row) + row;
  const double* above = factor_.Row(first) + row;
  Kernels().multiply(1, row - first, columns, {above, 1, stride}, above, stride, values, stride);
  const double pivot = -values[0];
  if (!(pivot > 0.0) || !std::isfinite(pivot)) return false;
  const double factor = -1.0 / std::sqrt(pivot);
  for (std::size_t j = 0; j < columns; ++j) values[j] *= factor;
  return true;
}

void TCholesky::Solve(std::span<double> values) const {
  const std::size_t size = factor_.Size();
  for (std::size_t i = 0; i < size; ++i) {  // U'y = b
    const double* row = factor_.Row(i);
    values[i] /= row[i];
    for (std::size_t j = i + 1; j < size; ++j) values[j] -= row[j] * values[i];
  }
  for (std::size_t i = size; i-- > 0;) {  // U x = y
    const double* row = factor_.Row(i);
    double sum = 0.0;
#pragma omp simd reduction(+ : sum)
    for (std::size_t j = i + 1; j < size; ++j) sum += row[j] * values[j];
    values[i] = (values[i] - sum) / row[i];
  }
}

}  // namespace kiln
