#include "Shared/Random.h"

#include <chrono>

namespace kiln::Random {

namespace {

std::uint32_t state = 1;

}  // namespace

void Seed(std::uint32_t seed) {
  state = seed;
}

void SeedFromClock() {
  static std::uint32_t calls = 0;
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  // The golden-ratio step keeps the starting points of calls within one tick far apart.
  state = static_cast<std::uint32_t>(ticks) + ++calls * 0x9E3779B9U;
}

int Next() {
  state = state * 22695477U + 1U;
  return static_cast<int>((state >> 16) & 32767U);
}

double Uniform(double lower, double upper) {
  return lower + (upper - lower) * Next() / kMax;
}

std::uint32_t Below(std::uint32_t n) {
  constexpr auto kOutcomes = static_cast<std::uint32_t>(kMax) + 1;
  const auto draw = static_cast<std::uint32_t>(Next());
  if (n <= kOutcomes) return draw % n;
  return (draw * kOutcomes + static_cast<std::uint32_t>(Next())) % n;
}

}  // namespace kiln::Random
