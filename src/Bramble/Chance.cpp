#include "Bramble/Chance.h"

#include <array>
#include <cstdint>

namespace kiln {

namespace {

// The generator's n-th state from s is kLeaps.DyaFactors[n-1] * s + kLeaps.DyaSummands[n-1]: so the
// draws of a block don't wait for each other.
constexpr std::size_t kBlock = 16;

struct Leaps {
  std::array<std::uint32_t, kBlock> DyaFactors{};
  std::array<std::uint32_t, kBlock> DyaSummands{};
};

constexpr Leaps kLeaps = [] {
  Leaps leaps;
  std::uint32_t factor = 1;
  std::uint32_t summand = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    leaps.DyaFactors[i] = factor *= Random::kMultiplier;
    leaps.DyaSummands[i] = summand = summand * Random::kMultiplier + Random::kIncrement;
  }
  return leaps;
}();

}  // namespace

std::size_t Chance::Misses(std::size_t limit) const {
  std::size_t drawn = 0;
  std::uint32_t state = Random::State();
  while (limit - drawn >= kBlock && !OccursInBlock(state)) {
    state = kLeaps.DyaFactors.back() * state + kLeaps.DyaSummands.back();
    drawn += kBlock;
  }
  Random::Seed(state);
  while (drawn < limit && !Occurs()) ++drawn;
  return drawn;
}

// Whether one of the kBlock draws after this state is the event.
//
// A remainder is compared without a division: 33521 / 2^25 is 1/1001 and so little more that for
// every value v of the generator v mod 1001 <= t just when v * 33521 mod 2^25 < (t + 1) * 33521.
bool Chance::OccursInBlock(std::uint32_t state) const {
  constexpr std::int32_t kReciprocal = 33521;
  constexpr std::int32_t kFraction = (1 << 25) - 1;
  const std::int32_t limit = (MbrIntThreshold + 1) * kReciprocal;
  std::uint32_t hits = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const std::uint32_t next = kLeaps.DyaFactors[i] * state + kLeaps.DyaSummands[i];
    const auto value = static_cast<std::int32_t>((next >> 16) & 32767U);
    hits |= ((value * kReciprocal) & kFraction) < limit ? 1U : 0U;
  }
  return hits != 0;
}

}  // namespace kiln
