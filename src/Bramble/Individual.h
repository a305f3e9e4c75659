#pragma once

#include <cstdint>

#include "Bramble/Chromosome.h"
#include "Bramble/Crossover.h"

namespace kiln {

// A chromosome with its descent and its fitness. Identifiers tell individuals of a run apart; 0 is
// nobody. Copying an individual clones it.
class Individual {
 public:
  Individual(std::uint32_t identifier, Chromosome chromosome);

  std::uint32_t Identifier() const { return MbrIntIdentifier; }
  std::uint32_t FirstParent() const { return MbrIntFirstParent; }
  std::uint32_t SecondParent() const { return MbrIntSecondParent; }

  Chromosome& Genes() { return MbrChmGenes; }
  const Chromosome& Genes() const { return MbrChmGenes; }

  // 0 until an evaluation.
  float Fitness() const { return MbrFltFitness; }

  // Stores a fitness that can be compared and added up: not-a-number becomes 0, an infinity the
  // largest finite number of its sign.
  void SetFitness(float fitness);

  // A child of this individual and `mate` by that many crossover points; its identifier is 0.
  // Throws TAssertion when the two don't fit together.
  Individual Mate(const Individual& mate, int crossover_points) const;

  // Becomes the child of two others, in the storage that it has. A coin decides which parent is the
  // first source of the crossover: `two` with odds of 501 to 500.
  // REQUIRES: neither parent is this individual. Throws TAssertion as Mate does.
  void BecomeChild(std::uint32_t identifier, const Individual& one, const Individual& two,
                   Crossover& crossover);

 private:
  std::uint32_t MbrIntIdentifier;
  std::uint32_t MbrIntFirstParent = 0;
  std::uint32_t MbrIntSecondParent = 0;
  float MbrFltFitness = 0.0F;
  Chromosome MbrChmGenes;
};

}  // namespace kiln
