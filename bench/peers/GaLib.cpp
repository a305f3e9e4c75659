// GAlib's simple genetic algorithm on genomes of single-precision reals.

// The genome's specialisations for reals stand in a source file that users include.
#include <ga/GASimpleGA.h>
#include <ga/GARealGenome.C>

#include <memory>

#include "Peers.h"

namespace kiln {

namespace {

float FirstGene(GAGenome& genome) {
  return static_cast<GARealGenome&>(genome).gene(0);
}

std::shared_ptr<GASimpleGA> MakeBreeder(int individuals, int genes, double mutation) {
  GARealGenome genome(static_cast<unsigned>(genes), GARealAlleleSet(0.0F, 1.0F), FirstGene);
  genome.mutator(GARealUniformMutator);
  auto breeder = std::make_shared<GASimpleGA>(genome);
  breeder->populationSize(static_cast<unsigned>(individuals));
  breeder->pCrossover(1.0F);
  breeder->pMutation(static_cast<float>(mutation));
  breeder->crossover(GARealOnePointCrossover);
  breeder->selectScores(GAStatistics::NoScores);
  breeder->initialize(1);
  return breeder;
}

}  // namespace

// Selection by the roulette wheel, linear scaling and one elite are its defaults.
TWork GaLibBreeding(int individuals, int genes, double mutation) {
  return [breeder = MakeBreeder(individuals, genes, mutation)](int passes) {
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) breeder->step();
    });
  };
}

}  // namespace kiln
