#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Training/TSymmetricMatrix.h"

namespace kiln {

// The normal equations of a least squares problem, J'J and J'r, where a row of J has the
// derivatives of a residual by each unknown. Rows are collected until there are enough of them for
// a product of matrices; J itself is never whole.
class TNormalEquations {
 public:
  explicit TNormalEquations(std::size_t unknowns);

  std::size_t Unknowns() const { return matrix_.Size(); }
  void Clear();

  // Adds a residual r and its derivatives, for which the caller fills the row that is returned; it
  // is the caller's until the next call.
  std::span<double> AddRow(double residual);

  // Adds a residual that depends on one unknown alone.
  void AddSingle(std::size_t unknown, double residual, double derivative);

  // Adds to J'r.
  void AddToGradient(std::size_t unknown, double value) { gradient_[unknown] += value; }

  // Takes in the rows that are still waiting. The two sums below are complete only then.
  void Finish();
  const TSymmetricMatrix& Matrix() const { return matrix_; }
  std::span<const double> Gradient() const { return {gradient_.data(), Unknowns()}; }

 private:
  TSymmetricMatrix matrix_;
  std::vector<double> gradient_;   // in whole registers, like the rows
  std::vector<double> rows_;       // those that are waiting
  std::vector<double> residuals_;  // one for each of them
  std::size_t waiting_ = 0;
};

}  // namespace kiln
