#include "Shared/Random.h"

#include <chrono>

namespace kiln::Random {

void Seed(std::uint32_t seed) {
  internal::state = seed;
}

void SeedFromClock() {
  static std::uint32_t calls = 0;
  const auto ticks = std::chrono::system_clock::now().time_since_epoch().count();
  // The golden-ratio step keeps the starting points of calls within one tick far apart.
  internal::state = static_cast<std::uint32_t>(ticks) + ++calls * 0x9E3779B9U;
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
