#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "Shared/Random.h"

namespace kiln {

// A probability as the engine draws it: in thousandths, cut, against one of 1001 outcomes. An event
// of probability p thus happens in trunc(1000 p) + 1 of 1001 draws, never less than one in 1001.
class Chance {
 public:
  // What is above 1 counts as 1, what is below 0 or not a number as 0.
  explicit Chance(float probability) : MbrIntThreshold(Thousandths(probability)) {}

  // Draws once.
  bool Occurs() const { return Random::Next() % kOutcomes <= MbrIntThreshold; }

  // Draws until the event happens, but at most `limit` times; how often it did not. The same as
  // calling Occurs() that often, only faster.
  std::size_t Misses(std::size_t limit) const;

  // One of two equals, the odds 501 to 500. Draws once.
  static bool Coin() { return Random::Next() % kOutcomes < kHeads; }

  // Flips a coin for each place: 1 or 0. The same as calling Coin() for each, only faster.
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
