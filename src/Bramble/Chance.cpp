#include "Bramble/Chance.h"

#include <algorithm>

namespace kiln {

// Passes over the next kBlock draws at once when none of them is the event. Draws one by one
// through a block that has the event in it, and where fewer than kBlock draws are left.
std::size_t Chance::Misses(std::size_t limit) const {
  std::size_t drawn = 0;
  while (drawn < limit) {
    const std::span<const std::uint16_t> ahead = Random::Ahead();
    const std::size_t count = std::min({ahead.size(), limit - drawn, kBlock});
    if (count == kBlock && !OccursAmong(ahead.first<kBlock>())) {
      Random::Skip(kBlock);
      drawn += kBlock;
    } else {
      for (const std::size_t end = drawn + count; drawn < end; ++drawn) {
        if (Occurs()) return drawn;
      }
    }
  }
  return limit;
}

bool Chance::OccursAmong(std::span<const std::uint16_t, kBlock> values) const {
  const std::uint16_t threshold = MbrIntThreshold;
  std::uint16_t events = 0;
  for (const std::uint16_t value : values) {
    events = static_cast<std::uint16_t>(events + (value % kOutcomes <= threshold));
  }
  return events != 0;
}

void Chance::Flip(std::span<std::uint8_t> coins) {
  while (!coins.empty()) {
    const std::span<const std::uint16_t> ahead = Random::Ahead();
    const auto values = ahead.first(std::min(ahead.size(), coins.size()));
    for (std::size_t i = 0; i < values.size(); ++i) {
      coins[i] = values[i] % kOutcomes < kHeads ? 1 : 0;
    }
    Random::Skip(values.size());
    coins = coins.subspan(values.size());
  }
}

}  // namespace kiln
