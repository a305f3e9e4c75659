#include "NeuralNets/TeamProducts.h"

#include <algorithm>

#include "Shared/TTeam.h"

namespace kiln {

namespace {

constexpr std::size_t kFewRows = 24;  // fewer are not worth a worker
constexpr double kAtOnce = 16.0;      // additions and multiplications, in registers

}  // namespace

void ShareProduct(std::size_t rows, std::size_t depth, std::size_t columns, const TMatrixView& a,
                  const double* b, std::size_t b_stride, double* c, std::size_t c_stride) {
  const double operations = 2.0 / kAtOnce * static_cast<double>(kFewRows * depth * columns);
  const std::size_t workers = TTeam::WorkersFor(rows / kFewRows, operations);
  if (workers == 1) {
    return Kernels().multiply(rows, depth, columns, a, b, b_stride, c, c_stride);
  }
  const std::size_t share = (rows + workers - 1) / workers;
  TTeam::ForEach(workers, workers, [&](std::size_t piece, std::size_t) {
    const std::size_t first = std::min(piece * share, rows);
    const TMatrixView factors = {a.values + first * a.row_stride, a.row_stride, a.column_stride};
    Kernels().multiply(std::min(share, rows - first), depth, columns, factors, b, b_stride,
                       c + first * c_stride, c_stride);
  });
}

}  // namespace kiln
