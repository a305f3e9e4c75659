#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Networks.h"
#include "NeuralNets/Training/TNormalEquations.h"

namespace kiln {
namespace {

// At every level of the kernels: sizes and numbers of rows that fill registers, panels and rows
// that wait, and such that do not. The sums and the solution are compared with loops over elements.
TEST(NormalEquationsTest, SumsAndSolutionAgreeWithPlainLoops) {
  for (const TKernelLevel level :
       {TKernelLevel::kBaseline, TKernelLevel::kAvx2, TKernelLevel::kAvx512}) {
    if (!ForceKernels(level)) continue;
    for (const std::size_t size : {1U, 5U, 8U, 31U, 33U, 64U, 77U}) {
      for (const std::size_t count : {1U, 90U, 128U, 300U}) {
        TNormalEquations equations(size);
        std::vector<TValues> rows(count, TValues(size));
        TValues residuals(count);
        equations.AddRow(1.0);
        equations.Clear();
        for (std::size_t r = 0; r < count; ++r) {
          residuals[r] = Random::Uniform(-1.0, 1.0);
          for (double& value : rows[r]) value = Random::Uniform(-1.0, 1.0);
          std::ranges::copy(rows[r], equations.AddRow(residuals[r]).begin());
        }
        equations.AddSingle(size / 2, 3.0, 2.0);
        equations.Finish();
        TValues damped(size * size), scales(size), gradient(size);
        for (std::size_t i = 0; i < size; ++i) {
          scales[i] = Random::Uniform(0.5, 1.0);
          for (std::size_t r = 0; r < count; ++r) gradient[i] += rows[r][i] * residuals[r];
          if (i == size / 2) gradient[i] += 6.0;
          EXPECT_NEAR(equations.Gradient()[i], gradient[i], 1e-11);
          for (std::size_t j = 0; j < size; ++j) {
            double& sum = damped[i * size + j];
            for (std::size_t r = 0; r < count; ++r) sum += rows[r][i] * rows[r][j];
            if (i == j && i == size / 2) sum += 4.0;
            if (i > j) continue;
            ASSERT_NEAR(equations.Matrix().Row(i)[j], sum, 1e-11);
            if (i == j) sum += 0.5 * scales[i];
          }
        }
        TCholesky cholesky(size);
        TValues solution = gradient;
        ASSERT_TRUE(cholesky.Factor(equations.Matrix(), 0.5, scales));
        cholesky.Solve(solution);
        for (std::size_t i = 0; i < size; ++i) {
          double product = 0.0;
          for (std::size_t j = 0; j < size; ++j) {
            product += damped[std::min(i, j) * size + std::max(i, j)] * solution[j];
          }
          ASSERT_NEAR(product, gradient[i], 1e-9) << size << " unknowns, " << count << " rows";
        }
      }
    }
  }
}

// Two equal columns: singular without damping. A value that is no number is no pivot either.
TEST(NormalEquationsTest, FactorSaysWhenAMatrixIsNotPositiveDefinite) {
  TSymmetricMatrix matrix(40);
  TCholesky cholesky(40);
  const TValues ones(40, 1.0);
  TValues row(matrix.Stride(), 1.0);
  matrix.AddProducts(row.data(), 1);
  EXPECT_FALSE(cholesky.Factor(matrix, 0.0, ones));
  EXPECT_TRUE(cholesky.Factor(matrix, 1e-3, ones));
  matrix.Row(35)[36] = std::nan("");
  EXPECT_FALSE(cholesky.Factor(matrix, 1e-3, ones));
  matrix.Row(35)[36] = 1e300;
  EXPECT_FALSE(cholesky.Factor(matrix, 1e-3, ones));
}

}  // namespace
}  // namespace kiln
