#include "Bramble/Individual.h"

#include <utility>

#include "Bramble/Chance.h"
#include "Shared/Narrowing.h"

namespace kiln {

Individual::Individual(std::uint32_t identifier, Chromosome chromosome)
    : MbrIntIdentifier(identifier), MbrChmGenes(std::move(chromosome)) {}

void Individual::SetFitness(float fitness) {
  MbrFltFitness = ToSingle(fitness);
}

Individual Individual::Mate(const Individual& mate, int crossover_points) const {
  Crossover crossover(crossover_points);
  Individual child(0, Chromosome(MbrChmGenes.Genome()));
  child.BecomeChild(0, *this, mate, crossover);
  return child;
}

void Individual::BecomeChild(std::uint32_t identifier, const Individual& one, const Individual& two,
                             Crossover& crossover) {
  MbrIntIdentifier = identifier;
  MbrIntFirstParent = one.MbrIntIdentifier;
  MbrIntSecondParent = two.MbrIntIdentifier;
  MbrFltFitness = 0.0F;
  if (Chance::Coin()) {
    crossover.Cross(two.MbrChmGenes, one.MbrChmGenes, MbrChmGenes);
  } else {
    crossover.Cross(one.MbrChmGenes, two.MbrChmGenes, MbrChmGenes);
  }
}

}  // namespace kiln
