#pragma once

#include <cstddef>
#include <vector>

#include "Bramble/Chromosome.h"

namespace kiln {

// How two chromosomes of L genes become one, by a number of crossover points k:
//
//   k = 1                  one point: genes 1..x of the first source and the rest of the second,
//                          x = draw(L), so that 0 copies the second;
//   k < 0 or k >= L - 1    uniform: each gene of the first with odds 501 to 500, else of the
//   second; otherwise              many points: k distinct cuts make k + 1 segments, taken from the
//   second
//                          and the first in turn; none copy the second.
//
// Keep one for many matings: it reuses the room for its cuts.
class Crossover {
 public:
  explicit Crossover(int points) : MbrIntPoints(points) {}

  // Makes `child` anew from genes of the two sources.
  // REQUIRES: the child is neither source. Throws TAssertion unless the sources have equal lengths
  // and genomes.
  void Cross(const Chromosome& first, const Chromosome& second, Chromosome& child);

 private:
  static void OnePoint(const Chromosome& first, const Chromosome& second, Chromosome& child);
  static void Uniform(const Chromosome& first, const Chromosome& second, Chromosome& child);
  void ManyPoint(const Chromosome& first, const Chromosome& second, Chromosome& child);
  void DrawCuts(std::size_t length);

  int MbrIntPoints;
  std::vector<std::size_t> MbrDyaNdxCuts;
};

}  // namespace kiln
