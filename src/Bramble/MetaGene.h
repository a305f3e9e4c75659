#pragma once

#include <cstdint>

#include "Bramble/GeneValue.h"

namespace kiln {

enum class GeneType : std::int32_t { kUndefined = 10, kInteger = 11, kReal = 12, kBoolean = 13 };

// What a gene may be: its type and bounds. Both bounds belong to the range, so equal ones fix the
// gene to one value. A boolean gene has its probability of true in the place of the upper bound.
//
// A plain triple of type, upper bound and lower bound; an array of them describes a genome.
class MetaGene {
 public:
  static MetaGene Undefined() { return {GeneType::kUndefined, {}, {}}; }
  // REQUIRES: lower <= upper, else TAssertion. The whole 32-bit range is allowed.
  static MetaGene Integer(std::int32_t lower, std::int32_t upper);
  // REQUIRES: finite bounds and lower <= upper, else TAssertion.
  static MetaGene Real(float lower, float upper);
  // REQUIRES: a probability in [0, 1], else TAssertion. One of 0 is still true once in 1001 draws.
  static MetaGene Boolean(float probability);

  GeneType Type() const { return MbrTypGene; }
  GeneValue Upper() const { return MbrGvlUpper; }
  GeneValue Lower() const { return MbrGvlLower; }
  float Probability() const { return MbrGvlUpper.Real(); }

  // A random value of this kind: an integer by lower + draw(upper + 1 - lower), where a range of
  // more than 32768 numbers takes two draws and one of more than 2^30 three; a real by
  // lower + (upper - lower) * r / 32767 with r one draw; a boolean by its chance. An undefined gene
  // has none and draws nothing.
  GeneValue Draw() const;

  bool operator==(const MetaGene&) const = default;

 private:
  MetaGene(GeneType type, GeneValue upper, GeneValue lower)
      : MbrTypGene(type), MbrGvlUpper(upper), MbrGvlLower(lower) {}

  GeneType MbrTypGene;
  GeneValue MbrGvlUpper;
  GeneValue MbrGvlLower;
};

}  // namespace kiln
