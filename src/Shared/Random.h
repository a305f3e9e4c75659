#pragma once

#include <cstdint>

// The one source of random numbers: a linear congruential generator,
// state = state * 22695477 + 1 (modulo 2^32), whose values are the bits 16 to 30 of the state.
// A run with the same seed and the same commands gives the same objects.
namespace kiln::Random {

inline constexpr int kMax = 32767;  // the largest value of Next()

inline constexpr std::uint32_t kMultiplier = 22695477;
inline constexpr std::uint32_t kIncrement = 1;

namespace internal {

inline std::uint32_t state = 1;

}  // namespace internal

// The next draw is the first after this state.
void Seed(std::uint32_t seed);

// What Seed would have to be given to go on from here.
inline std::uint32_t State() {
  return internal::state;
}

// Starts from the clock. Two calls within one tick of it still start differently.
void SeedFromClock();

// The next value, 0..kMax. Stands here because the genetic engine draws once for every gene.
inline int Next() {
  internal::state = internal::state * kMultiplier + kIncrement;
  return static_cast<int>((internal::state >> 16) & 32767U);
}

// A value in [lower, upper], both ends included, in steps of (upper - lower) / kMax.
double Uniform(double lower, double upper);

// A value in 0..n-1. Puts two or three draws together where fewer do not have n outcomes.
// REQUIRES: 1 <= n <= 2^32.
std::uint32_t Below(std::uint64_t n);

}  // namespace kiln::Random
