#include "Bramble/Crossover.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "Bramble/Chance.h"
#include "Bramble/Status.h"
#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

void Crossover::Cross(const Chromosome& first, const Chromosome& second, Chromosome& child) {
  const std::size_t length = first.Length();
  Assert(second.Length() == length, "NdxMateChromLength == NdxChromLength", kBrambleModule);
  if (MbrIntPoints == 1 && length > 0) {
    OnePoint(first, second, child);
  } else if (MbrIntPoints < 0 || static_cast<std::size_t>(MbrIntPoints) + 1 >= length) {
    Uniform(first, second, child);
  } else {
    ManyPoint(first, second, child);
  }
  Assert(child.Length() == length, "NdxNewLength == NdxChromLength", kBrambleModule);
}

void Crossover::OnePoint(const Chromosome& first, const Chromosome& second, Chromosome& child) {
  const std::size_t point = Random::Below(first.Length());
  child.Restart(first.Genome());
  child.Append(first, 1, point);
  child.Append(second, point + 1, second.Length());
}

// The source of each gene is looked up rather than branched to: no processor guesses a coin.
void Crossover::Uniform(const Chromosome& first, const Chromosome& second, Chromosome& child) {
  const std::array<const Chromosome*, 2> sources = {&second, &first};
  child.Restart(first.Genome());
  child.Append(second, 1, second.Length());
  for (std::size_t position = 1; position <= child.Length(); ++position) {
    child.Take(*sources[Chance::Coin() ? 1 : 0], position);
  }
}

void Crossover::ManyPoint(const Chromosome& first, const Chromosome& second, Chromosome& child) {
  DrawCuts(first.Length());
  child.Restart(first.Genome());
  for (std::size_t segment = 0; segment + 1 < MbrDyaNdxCuts.size(); ++segment) {
    const Chromosome& source = segment % 2 == 1 ? first : second;
    child.Append(source, MbrDyaNdxCuts[segment], MbrDyaNdxCuts[segment + 1] - 1);
  }
}

// Fills the cuts with 1, k distinct ascending positions from 2..L, and L + 1. The positions are
// drawn from 1..L-k, where they may meet, and spread by adding each one's rank.
void Crossover::DrawCuts(std::size_t length) {
  const auto points = static_cast<std::size_t>(MbrIntPoints);
  MbrDyaNdxCuts.assign(1, 1);
  for (std::size_t rank = 1; rank <= points; ++rank) {
    MbrDyaNdxCuts.push_back(Random::Below(length - points) + std::size_t{1});
  }
  std::ranges::sort(MbrDyaNdxCuts);
  for (std::size_t rank = 1; rank <= points; ++rank) MbrDyaNdxCuts[rank] += rank;
  MbrDyaNdxCuts.push_back(length + 1);
}

}  // namespace kiln
