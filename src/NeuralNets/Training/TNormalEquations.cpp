#include "NeuralNets/Training/TNormalEquations.h"

#include <algorithm>

namespace kiln {

namespace {

constexpr std::size_t kRows = 128;  // what one pass over the matrix takes in

}  // namespace

TNormalEquations::TNormalEquations(std::size_t unknowns)
    : matrix_(unknowns),
      gradient_(matrix_.Stride()),
      rows_(kRows * matrix_.Stride()),
      residuals_(kRows) {}

void TNormalEquations::Clear() {
  matrix_.Clear();
  std::ranges::fill(gradient_, 0.0);
  waiting_ = 0;
}

std::span<double> TNormalEquations::AddRow(double residual) {
  if (waiting_ == kRows) Finish();
  residuals_[waiting_] = residual;
  return {rows_.data() + waiting_++ * matrix_.Stride(), Unknowns()};
}

void TNormalEquations::AddSingle(std::size_t unknown, double residual, double derivative) {
  matrix_.Row(unknown)[unknown] += derivative * derivative;
  gradient_[unknown] += derivative * residual;
}

void TNormalEquations::Finish() {
  matrix_.AddProducts(rows_.data(), waiting_);
  Kernels().propagate(rows_.data(), nullptr, waiting_, matrix_.Stride(), residuals_.data(),
                      gradient_.data());
  waiting_ = 0;
}

}  // namespace kiln
