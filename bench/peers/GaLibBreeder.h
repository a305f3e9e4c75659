#pragma once

#include <ga/GARealGenome.h>
#include <ga/GASimpleGA.h>

#include <memory>

namespace kiln {

// GAlib's simple genetic algorithm on genomes of reals, with one-point crossover and the share
// `mutation` of the genes drawn anew. Selection by the roulette wheel, linear scaling and one elite
// are its defaults.
inline std::unique_ptr<GASimpleGA> MakeGaLibBreeder(GARealGenome& genome, int individuals,
                                                    double mutation) {
  genome.mutator(GARealUniformMutator);
  auto breeder = std::make_unique<GASimpleGA>(genome);
  breeder->populationSize(static_cast<unsigned>(individuals));
  breeder->pCrossover(1.0F);
  breeder->pMutation(static_cast<float>(mutation));
  breeder->crossover(GARealOnePointCrossover);
  breeder->selectScores(GAStatistics::NoScores);
  breeder->initialize(1);
  return breeder;
}

}  // namespace kiln
