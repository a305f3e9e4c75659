#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "Shared/Random.h"

namespace kiln {

// A probability p in the engine's terms: the event happens when a draw from 0..1000 is at most
// trunc(1000 p), that is in trunc(1000 p) + 1 of 1001 draws. So it is never rarer than 1 in 1001.
class Chance {
 public:
  // A probability above 1 counts as 1, one below 0 or not-a-number as 0.
  explicit Chance(float probability) : MbrIntThreshold(Thousandths(probability)) {}

  // Draws once.
  bool Occurs() const { return Random::Next() % kOutcomes <= MbrIntThreshold; }

  // Draws until the event happens, `limit` times at most, and returns the number of draws before
  // the one that brought it. The same as calling Occurs() again and again, only faster.
  std::size_t Misses(std::size_t limit) const;

  // A coin: true with odds of 501 to 500. Draws once.
  static bool Coin() { return Random::Next() % kOutcomes < kHeads; }

  // Fills every place with a coin, 1 or 0. The same as calling Coin() for each, only faster.
  static void Flip(std::span<std::uint8_t> coins);

 private:
  static constexpr std::uint16_t kOutcomes = 1001;
  static constexpr std::uint16_t kHeads = 501;
  static constexpr std::size_t kBlock = 16;  // draws that are looked at together

  static std::uint16_t Thousandths(float probability) {
    if (!(probability > 0.0F)) return 0;
    return probability >= 1.0F
               ? 1000
               : static_cast<std::uint16_t>(static_cast<double>(probability) * 1000.0);
  }

  bool OccursAmong(std::span<const std::uint16_t, kBlock> values) const;

  std::uint16_t MbrIntThreshold;
};

}  // namespace kiln
