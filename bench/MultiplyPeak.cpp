#include "MultiplyPeak.h"

#include <cstddef>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

namespace {

constexpr std::size_t kChains = 12;

template <std::size_t kLanes>
struct TRegister {
  using TValues [[gnu::vector_size(kLanes * sizeof(double))]] = double;
};

// Always inlined, so that it is compiled for the instruction set of its caller.
template <std::size_t kLanes>
[[gnu::always_inline]] inline double Multiply(int passes) {
  typename TRegister<kLanes>::TValues x[kChains] = {};
  for (std::size_t i = 0; i < kChains; ++i) x[i] += static_cast<double>(i);
  const auto rounds = static_cast<long>(passes * kPeakOperations / (2.0 * kChains * kLanes));
  for (long round = 0; round < rounds; ++round) {
#pragma GCC unroll 12
    for (std::size_t i = 0; i < kChains; ++i) x[i] = x[i] * 0.5 + 0.25;
  }
  double sum = 0.0;
  for (const auto& values : x) sum += values[0];
  return sum;
}

double MultiplyBaseline(int passes) {
  return Multiply<2>(passes);
}

#ifdef __x86_64__
[[gnu::target("avx2,fma")]] double MultiplyAvx2(int passes) {
  return Multiply<4>(passes);
}

[[gnu::target("avx512f,fma")]] double MultiplyAvx512(int passes) {
  return Multiply<8>(passes);
}
#endif

using TMultiply = double (*)(int passes);

TMultiply BestMultiply() {
#ifdef __x86_64__
  if (KernelsOf(TKernelLevel::kAvx512) != nullptr) return MultiplyAvx512;
  if (KernelsOf(TKernelLevel::kAvx2) != nullptr) return MultiplyAvx2;
#endif
  return MultiplyBaseline;
}

}  // namespace

TWork MultiplyPeak() {
  return [multiply = BestMultiply()](int passes) {
    volatile double result = 0.0;  // or the loops would be left out
    return SecondsOf([&] { result = multiply(passes); });
  };
}

}  // namespace kiln
