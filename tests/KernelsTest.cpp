#include "NeuralNets/Kernels/Kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Networks.h"

namespace kiln {
namespace {

struct TBuffers {
  TBuffers(std::size_t to, std::size_t from)
      : rows(to),
        columns(from),
        w(to * from),
        g(to * from),
        p(to * from),
        m(to * from),
        d(to),
        y(to),
        x(from),
        e(from) {
    for (TValues* values : {&w, &g, &p, &d, &y, &x, &e}) {
      for (double& value : *values) value = Random::Uniform(-1.0, 1.0);
    }
    for (std::size_t i = 0; i < m.size(); ++i) {
      m[i] = static_cast<TMask>(Random::Below(4));
      if ((m[i] & FMaskExists) == 0 || i % 5 == 0) w[i] = 0.0;
    }
  }

  void ExpectNear(const TBuffers& other) const {
    const TValues* const mine[] = {&w, &g, &p, &y, &e};
    const TValues* const others[] = {&other.w, &other.g, &other.p, &other.y, &other.e};
    for (std::size_t k = 0; k < 5; ++k) {
      for (std::size_t i = 0; i < mine[k]->size(); ++i) {
        ASSERT_NEAR((*mine[k])[i], (*others[k])[i], 1e-12)
            << rows << " x " << columns << ", buffer " << k << ", place " << i;
      }
    }
  }

  std::size_t rows, columns;
  TValues w, g, p;
  std::vector<TMask> m;
  TValues d, y, x, e;
};

// The four ways to move a weight.
constexpr TRates kWays[] = {{0.3, 0.0, 0.0}, {0.3, 0.7, 0.0}, {0.3, 0.0, 0.01}, {0.3, 0.7, 0.01}};

void RunKernels(const TKernels& k, TBuffers& b, bool masked, bool propagates) {
  const TMask* m = masked ? b.m.data() : nullptr;
  double* e = propagates ? b.e.data() : nullptr;
  k.accumulate(b.w.data(), m, b.rows, b.columns, b.x.data(), b.y.data());
  k.propagate(b.w.data(), m, b.rows, b.columns, b.d.data(), b.e.data());
  k.add_gradient(b.g.data(), b.rows, b.columns, b.d.data(), b.x.data());
  for (const TRates& rates : kWays) {
    k.update(b.w.data(), m, b.w.size(), b.g.data(), b.p.data(), rates);
    k.step(b.w.data(), m, b.rows, b.columns, b.d.data(), b.x.data(), e, b.p.data(), rates);
  }
}

void RunByHand(TBuffers& b, bool masked, bool propagates) {
  const auto sweep = [&](const auto& visit) {
    for (std::size_t i = 0; i < b.w.size(); ++i) visit(i, i / b.columns, i % b.columns);
  };
  const auto propagate = [&](auto i, auto r, auto c) {
    if (!masked || (b.m[i] & FMaskExists) != 0) b.e[c] += b.w[i] * b.d[r];
  };
  const auto move = [&](std::size_t i, double gradient, const TRates& rates) {
    if (masked && b.m[i] != FMaskAll) return;
    const double sign = b.w[i] > 0.0 ? 1.0 : b.w[i] < 0.0 ? -1.0 : 0.0;
    const double change = rates.momentum * b.p[i] - rates.rate * gradient - rates.pull * sign;
    if (rates.momentum != 0.0) b.p[i] = change;
    b.w[i] += change;
  };
  sweep([&](auto i, auto r, auto c) {
    if (!masked || (b.m[i] & FMaskExists) != 0) b.y[r] += b.w[i] * b.x[c];
  });
  sweep(propagate);
  sweep([&](auto i, auto r, auto c) { b.g[i] += b.d[r] * b.x[c]; });
  for (const TRates& rates : kWays) {
    sweep([&](auto i, auto, auto) { move(i, b.g[i], rates); });
    if (propagates) sweep(propagate);
    sweep([&](auto i, auto r, auto c) { move(i, b.d[r] * b.x[c], rates); });
  }
}

// Both ways round: the factor a by rows, and by columns.
void ExpectProducts(const TKernels& k, std::size_t rows, std::size_t depth, std::size_t columns) {
  const std::size_t b_stride = PaddedSize(columns) + 8;
  const std::size_t c_stride = columns + 1;
  TValues a(rows * depth), b(depth * b_stride), c(rows * c_stride);
  for (TValues* values : {&a, &b, &c}) {
    for (double& value : *values) value = Random::Uniform(-1.0, 1.0);
  }
  for (const TMatrixView& view :
       {TMatrixView{a.data(), depth, 1}, TMatrixView{a.data(), 1, rows}}) {
    TValues product = c;
    k.multiply(rows, depth, columns, view, b.data(), b_stride, product.data(), c_stride);
    for (std::size_t i = 0; i < c.size(); ++i) {
      double sum = c[i];
      for (std::size_t j = 0; j < depth && i % c_stride < columns; ++j) {
        sum += a[i / c_stride * view.row_stride + j * view.column_stride] *
               b[j * b_stride + i % c_stride];
      }
      ASSERT_NEAR(sum, product[i], 1e-13) << rows << " x " << columns << ", place " << i;
    }
    // However many patterns a block takes, gradients have the same digits.
    const std::size_t first = std::min<std::size_t>(depth, 128);
    TValues in_two = c;
    k.multiply(rows, first, columns, view, b.data(), b_stride, in_two.data(), c_stride);
    k.multiply(rows, depth - first, columns,
               {view.values + first * view.column_stride, view.row_stride, view.column_stride},
               b.data() + first * b_stride, b_stride, in_two.data(), c_stride);
    ASSERT_EQ(in_two, product);
  }
}

TEST(KernelsTest, EveryLevelDoesWhatItsFormulasSay) {
  for (const TKernelLevel level :
       {TKernelLevel::kBaseline, TKernelLevel::kAvx2, TKernelLevel::kAvx512}) {
    const TKernels* kernels = KernelsOf(level);
    if (kernels == nullptr) continue;
    for (const std::size_t rows : {0u, 1u, 2u, 3u, 4u, 5u, 8u, 9u, 70u}) {
      for (std::size_t columns = 0; columns <= 70; ++columns) {
        for (const bool masked : {false, true}) {
          TBuffers fast(rows, columns);
          TBuffers slow = fast;
          RunKernels(*kernels, fast, masked, columns % 2 == 1);
          RunByHand(slow, masked, columns % 2 == 1);
          fast.ExpectNear(slow);
        }
      }
    }
    for (std::size_t columns = 0; columns <= 70; ++columns) ExpectProducts(*kernels, 9, 5, columns);
    for (std::size_t rows = 0; rows <= 9; ++rows) ExpectProducts(*kernels, rows, rows + 1, 33);
    ExpectProducts(*kernels, 297, 131, 293);
    for (std::size_t n = 0; n <= 70; ++n) {
      TValues a(PaddedSize(n)), y(PaddedSize(n));
      for (std::size_t i = 0; i < n; ++i) {
        a[i] = Random::Uniform(-600.0, 800.0) / (i % 2 == 0 ? 1.0 : 100.0);
      }
      kernels->sigmoid(a.data(), y.data(), n);
      for (std::size_t i = 0; i < n; ++i) {
        const double expected = a[i] < -500.0 ? 1e-300 : 1.0 / (1.0 + std::exp(-a[i]));
        EXPECT_NEAR(y[i], expected, 5e-16 * expected) << a[i];
        a[i] /= i % 3 == 0 ? 1e5 : 30.0;
      }
      kernels->tanh(a.data(), y.data(), n);
      for (std::size_t i = 0; i < n; ++i) {
        EXPECT_NEAR(y[i], std::tanh(a[i]), 6e-16 * std::abs(std::tanh(a[i]))) << a[i];
      }
    }
  }
}

}  // namespace
}  // namespace kiln
