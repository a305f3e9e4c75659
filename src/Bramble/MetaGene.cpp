#include "Bramble/MetaGene.h"

#include <cmath>

#include "Bramble/Chance.h"
#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// Counts the range in 64 bits: it has up to 2^32 numbers.
std::int32_t DrawInteger(std::int64_t lower, std::int64_t upper) {
  const auto range = static_cast<std::uint64_t>(upper + 1 - lower);
  return static_cast<std::int32_t>(lower + static_cast<std::int64_t>(Random::Below(range)));
}

}  // namespace

MetaGene MetaGene::Integer(std::int32_t lower, std::int32_t upper) {
  Assert(lower <= upper, "IntLower <= IntUpper");
  return {GeneType::kInteger, GeneValue::OfInteger(upper), GeneValue::OfInteger(lower)};
}

MetaGene MetaGene::Real(float lower, float upper) {
  Assert(std::isfinite(lower) && std::isfinite(upper) && lower <= upper, "FltLower <= FltUpper");
  return {GeneType::kReal, GeneValue::OfReal(upper), GeneValue::OfReal(lower)};
}

MetaGene MetaGene::Boolean(float probability) {
  Assert(probability >= 0.0F && probability <= 1.0F, "0 <= FltProbability <= 1");
  return {GeneType::kBoolean, GeneValue::OfReal(probability), {}};
}

GeneValue MetaGene::Draw() const {
  switch (MbrTypGene) {
    case GeneType::kInteger:
      return GeneValue::OfInteger(DrawInteger(MbrGvlLower.Integer(), MbrGvlUpper.Integer()));
    case GeneType::kReal:
      return GeneValue::OfReal(
          static_cast<float>(Random::Uniform(MbrGvlLower.Real(), MbrGvlUpper.Real())));
    case GeneType::kBoolean:
      return GeneValue::OfBoolean(Chance(Probability()).Occurs());
    case GeneType::kUndefined:
      break;
  }
  return {};
}

}  // namespace kiln
