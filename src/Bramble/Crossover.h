#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Bramble/Chromosome.h"

namespace kiln {

// How two chromosomes of L genes become one. The child is a copy of the second source and takes
// some genes from the first, by the number of crossover points k:
//
// - k = 1, one point: genes 1..x, x = draw(L).
// - k < 0 or k >= L - 1, uniform: each gene with odds 501 to 500.
// - other k, many points: k distinct cuts make segments 0..k, of which the odd ones are taken.
//
// Keep one for many matings: it reuses the room for its cuts and coins.
class Crossover {
 public:
  explicit Crossover(int points) : MbrIntPoints(points) {}

  // Makes `child` anew from genes of the two sources.
  // REQUIRES: the child is neither source. Throws TAssertion unless the sources have equal lengths
  // and genomes.
  void Cross(const Chromosome& first, const Chromosome& second, Chromosome& child);

 private:
  static void OnePoint(const Chromosome& first, Chromosome& child);
  void Uniform(const Chromosome& first, Chromosome& child);
  void ManyPoint(const Chromosome& first, Chromosome& child);
  void DrawCuts(std::size_t length);

  int MbrIntPoints;
  std::vector<std::size_t> MbrDyaNdxCuts;
  std::vector<std::uint8_t> MbrDyaIntCoins;
};

}  // namespace kiln
