#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// The one source of random numbers: a linear congruential generator,
// state = state * 22695477 + 1 (modulo 2^32), whose values are the bits 16 to 30 of the state.
// A run with the same seed and the same commands gives the same objects.
//
// Values are generated ahead of use, in blocks, so that several are computed at a time.
namespace kiln::Random {

inline constexpr int kMax = 32767;  // the largest value

namespace internal {

struct Generator {
  std::uint32_t state = 1;  // that of the last value of the block
  std::array<std::uint16_t, 256> block{};
  std::size_t used = block.size();  // values of the block that have been drawn

  void Refill();
};

inline constinit Generator generator;

}  // namespace internal

// The next draw is the first after this state.
void Seed(std::uint32_t seed);

// Starts from the clock. Two calls within one tick of it still start differently.
void SeedFromClock();

// For loops over many draws: some of the next values, at least one, without drawing them. Valid
// until the next draw. Skip then draws those that the caller has used.
inline std::span<const std::uint16_t> Ahead() {
  internal::Generator& generator = internal::generator;
  if (generator.used == generator.block.size()) generator.Refill();
  return std::span(generator.block).subspan(generator.used);
}

// Draws `count` values. REQUIRES: no more than there are Ahead().
inline void Skip(std::size_t count) {
  internal::generator.used += count;
}

// The next value, 0..kMax.
inline int Next() {
  const int next = Ahead().front();
  Skip(1);
  return next;
}

// A value in [lower, upper], both ends included, in steps of (upper - lower) / kMax.
double Uniform(double lower, double upper);

// A value in 0..n-1. Puts two or three draws together where fewer do not have n outcomes.
// REQUIRES: 1 <= n <= 2^32.
std::uint32_t Below(std::uint64_t n);

}  // namespace kiln::Random
