// GAlib's simple genetic algorithm on genomes of single-precision reals.

// The genome's specialisations for reals stand in a source file that users include.
#include <ga/GASimpleGA.h>
#include <ga/GARealGenome.C>

#include <memory>

#include "GaLibBreeder.h"
#include "Peers.h"

namespace kiln {

namespace {

float FirstGene(GAGenome& genome) {
  return static_cast<GARealGenome&>(genome).gene(0);
}

}  // namespace

TWork GaLibBreeding(int individuals, int genes, double mutation) {
  GARealGenome genome(static_cast<unsigned>(genes), GARealAlleleSet(0.0F, 1.0F), FirstGene);
  const std::shared_ptr<GASimpleGA> breeder = MakeGaLibBreeder(genome, individuals, mutation);
  return [breeder](int passes) {
    return SecondsOf([&] {
      for (int n = 0; n < passes; ++n) breeder->step();
    });
  };
}

}  // namespace kiln
