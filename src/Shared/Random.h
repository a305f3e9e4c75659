#pragma once

#include <cstdint>

// The one source of random numbers: a linear congruential generator,
// state = state * 22695477 + 1 (modulo 2^32), whose values are the bits 16 to 30 of the state.
// A run with the same seed and the same commands gives the same objects.
namespace kiln::Random {

inline constexpr int kMax = 32767;  // the largest value of Next()

void Seed(std::uint32_t seed);

// Starts from the clock. Two calls within one tick of it still start differently.
void SeedFromClock();

// The next value, 0..kMax.
int Next();

// A value in [lower, upper], both ends included, in steps of (upper - lower) / kMax.
double Uniform(double lower, double upper);

// A value in 0..n-1. Puts two draws together where one does not have n outcomes.
// REQUIRES: 1 <= n <= 2^30.
std::uint32_t Below(std::uint32_t n);

}  // namespace kiln::Random
