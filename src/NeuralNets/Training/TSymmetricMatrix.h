#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

// A symmetric matrix, of which the upper triangle is kept: element (i, j), i <= j, stands in row i.
// What the places below the diagonal hold means nothing.
class TSymmetricMatrix {
 public:
  // Rows start so far apart, in whole registers.
  static std::size_t StrideOf(std::size_t size) { return PaddedSize(size); }

  // Zeros.
  explicit TSymmetricMatrix(std::size_t size)
      : size_(size), stride_(StrideOf(size)), values_(size * stride_) {}

  std::size_t Size() const { return size_; }
  std::size_t Stride() const { return stride_; }
  void Clear();

  // Row i, whose element j is (i, j). REQUIRES: i < Size().
  double* Row(std::size_t i) { return values_.data() + i * stride_; }
  const double* Row(std::size_t i) const { return values_.data() + i * stride_; }

  // Adds B'B, where B has `count` rows of Size() values, which start Stride() apart.
  void AddProducts(const double* rows, std::size_t count);

 private:
  std::size_t size_;
  std::size_t stride_;
  std::vector<double> values_;
};

// The factor U of a positive definite matrix A = U'U, U being upper triangular, and with it the
// solution of A x = b.
class TCholesky {
 public:
  explicit TCholesky(std::size_t size) : factor_(size) {}

  // Factors `matrix` with `damping` times `scales` added to its diagonal. Returns false when the
  // sum is not positive definite, as far as rounding lets this be told, or not finite. REQUIRES:
  // the size of the constructor, here and below.
  bool Factor(const TSymmetricMatrix& matrix, double damping, std::span<const double> scales);

  // Turns b into x. REQUIRES: the last call of Factor returned true.
  void Solve(std::span<double> values) const;

 private:
  void LoadNegative(const TSymmetricMatrix& matrix, double damping, std::span<const double> scales);
  bool FactorRow(std::size_t first, std::size_t row);

  TSymmetricMatrix factor_;
};

}  // namespace kiln
