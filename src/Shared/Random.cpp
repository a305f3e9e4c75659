#include "Shared/Random.h"

#include <chrono>
#include <tuple>

#include "Shared/Ranks.h"

// Compiles a function for processors with AVX2 as well; the program takes the one that fits. It
// does so before the thread sanitizer can stand it.
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__SANITIZE_THREAD__)
#define KILN_CLONES [[gnu::target_clones("avx2", "default")]]
#else
#define KILN_CLONES
#endif

namespace kiln::Random {

namespace {

constexpr std::uint32_t kMultiplier = 22695477;
constexpr std::uint32_t kIncrement = 1;

// The n-th state after s is kLeaps.factors[n-1] * s + kLeaps.summands[n-1].
constexpr std::size_t kStride = 16;

struct Leaps {
  std::array<std::uint32_t, kStride> factors{};
  std::array<std::uint32_t, kStride> summands{};
};

constexpr Leaps kLeaps = [] {
  Leaps leaps;
  std::uint32_t factor = 1;
  std::uint32_t summand = 0;
  for (std::size_t i = 0; i < kStride; ++i) {
    leaps.factors[i] = factor *= kMultiplier;
    leaps.summands[i] = summand = summand * kMultiplier + kIncrement;
  }
  return leaps;
}();

// Makes the values after a state, whole strides of them, and returns the state of the last.
KILN_CLONES std::uint32_t Generate(std::uint32_t state, std::span<std::uint16_t> values) {
  for (; !values.empty(); values = values.subspan(kStride)) {
    for (std::size_t i = 0; i < kStride; ++i) {
      const std::uint32_t next = kLeaps.factors[i] * state + kLeaps.summands[i];
      values[i] = static_cast<std::uint16_t>((next >> 16) & 32767U);
    }
    state = kLeaps.factors.back() * state + kLeaps.summands.back();
  }
  return state;
}

}  // namespace

void internal::Generator::Refill() {
  static_assert(std::tuple_size_v<decltype(block)> % kStride == 0);
  state = Generate(state, block);
  used = 0;
}

void Seed(std::uint32_t seed) {
  internal::generator.state = seed;
  internal::generator.used = internal::generator.block.size();
}

void SeedFromClock() {
  static std::uint32_t calls = 0;
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  // The golden-ratio step keeps the starting points of calls within one tick far apart.
  Seed(static_cast<std::uint32_t>(Ranks::Shared(ticks)) + ++calls * 0x9E3779B9U);
}

double Uniform(double lower, double upper) {
  return lower + (upper - lower) * Next() / kMax;
}

std::uint32_t Below(std::uint64_t n) {
  constexpr std::uint64_t kOutcomes = std::uint64_t{kMax} + 1;
  auto draw = static_cast<std::uint64_t>(Next());
  for (std::uint64_t outcomes = kOutcomes; outcomes < n; outcomes *= kOutcomes) {
    draw = draw * kOutcomes + static_cast<std::uint64_t>(Next());
  }
  return static_cast<std::uint32_t>(draw % n);
}

}  // namespace kiln::Random
