#include "Bramble/Crossover.h"

#include <algorithm>

#include "Bramble/Chance.h"
#include "Bramble/Status.h"
#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

void Crossover::Cross(const Chromosome& first, const Chromosome& second, Chromosome& child) {
  const std::size_t length = first.Length();
  Assert(second.Length() == length, "NdxMateChromLength == NdxChromLength", kBrambleModule);
  Assert(first.Genome() == second.Genome() || *first.Genome() == *second.Genome(),
         "MchMate == MchGenome");
  child = second;
  if (MbrIntPoints == 1 && length > 0) {
    OnePoint(first, child);
  } else if (MbrIntPoints < 0 || static_cast<std::size_t>(MbrIntPoints) + 1 >= length) {
    Uniform(first, child);
  } else {
    ManyPoint(first, child);
  }
  Assert(child.Length() == length, "NdxNewLength == NdxChromLength", kBrambleModule);
}

void Crossover::OnePoint(const Chromosome& first, Chromosome& child) {
  child.Take(first, 1, Random::Below(first.Length()) + std::size_t{1});
}

void Crossover::Uniform(const Chromosome& first, Chromosome& child) {
  MbrDyaIntCoins.resize(first.Length());
  Chance::Flip(MbrDyaIntCoins);
  child.Take(first, MbrDyaIntCoins);
}

void Crossover::ManyPoint(const Chromosome& first, Chromosome& child) {
  DrawCuts(first.Length());
  for (std::size_t segment = 1; segment + 1 < MbrDyaNdxCuts.size(); segment += 2) {
    child.Take(first, MbrDyaNdxCuts[segment], MbrDyaNdxCuts[segment + 1]);
  }
}

// Fills the cuts with 1, k distinct ascending positions from 2..L, and L + 1. The positions are
// drawn from 1..L-k, where some may be equal, and become distinct by adding its rank to each.
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
