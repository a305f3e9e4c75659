#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "Bramble/Eval.h"
#include "Bramble/MetaChrom.h"
#include "GA-Apps/GenTrain/TGenTrainMeasure.h"

namespace kiln {

class Data;

// What random weights of a trained network are drawn from, both ends included.
struct TWeightBounds {
  float FltMinimum;
  float FltMaximum;
};

// An error, and the fitness that it is worth.
struct TGenTrainRecord {
  double DblError = 2147483647.0;
  float FltFitness = 0.0F;
};

// What the weights of a network are bred for: a small error of its recall.
//
// A chromosome has one real gene for every weight of the network, in the one order of weights.
// Absent and frozen weights have genes too, but these are never read, so that training leaves such
// weights as they are. Derived evaluators know from what a gene is drawn and how a chromosome is
// repaired.
class TGenTrainEval : public Evaluator {
 public:
  static constexpr float kFitnessWithoutError = 2147483648.0F;

  // REQUIRES: the network outlives the evaluator; its structure and flags stay as they are.
  explicit TGenTrainEval(TBasicNetwork& network);

  const TBasicNetwork& Network() const { return MbrNetNetwork; }

  // The sets over which the error is the mean. They outlive what is evaluated by them.
  // Throws TException when there is none, one has no rows, or its columns don't fit the network.
  void SetData(std::span<const Data* const> sets);

  // What random genes are drawn from: DefinitionOf for the weights that are trained; the present
  // weight alone for the others.
  MetaChrom Genome() const;

  // The network's present weights as genes.
  std::vector<GeneValue> SeedGenome() const;

  // Writes genes into the network. REQUIRES: there is one for every weight.
  void SetGenes(std::span<const GeneValue> genes) { MbrMsrNetwork.SetGenes(genes); }

  // Brings genes into a form that makes sense. False for those that are beyond repair.
  // Workers repair several individuals at a time.
  virtual bool Repair(std::span<GeneValue> genes) const = 0;

  // The root mean square error of the network as it is, averaged over the sets.
  double Error() { return MbrMsrNetwork.Error(MbrDyaPtrDatSets); }

  // Sets the genes. The fitness is 1 / error, kFitnessWithoutError for an error of exactly 0, and 0
  // for one that is not a number.
  TGenTrainRecord Evaluate(std::span<const GeneValue> genes);

  // Repairs, then evaluates, as the pieces of a team. What is beyond repair has a random fitness in
  // [0, 0.5].
  void EvaluatePopulation(std::span<const MetaGene> genome,
                          std::span<const std::span<GeneValue>> genes,
                          std::span<float> fitness) override;

  // The lowest error of the last population; of several with one fitness that of the last, which
  // is the best individual. Errors of 2147483647 or more do not count.
  const TGenTrainRecord& Lowest() const { return MbrRecLowest; }

  // The mean error of the last population. Those errors that do not count are left out; not a
  // number where none counts.
  double AverageError() const;

 protected:
  // What a trained weight may be.
  virtual MetaGene DefinitionOf(std::size_t gene) const = 0;

  // Whether training may change the weight of a gene.
  bool IsTrained(std::size_t gene) const { return MbrDyaFlgWeights[gene] == FMaskAll; }

 private:
  // A copy of the network for one of several workers.
  struct TCopy {
    TCopy(const TBasicNetwork& network, std::span<const TMask> flags)
        : PtrNetNetwork(network.Clone()), MsrNetwork(*PtrNetNetwork, flags) {}

    std::unique_ptr<TBasicNetwork> PtrNetNetwork;
    TGenTrainMeasure MsrNetwork;
  };

  double OperationsOfOne() const;
  TGenTrainMeasure& MeasureAt(std::size_t place);
  float Rate(double error);

  TBasicNetwork& MbrNetNetwork;
  std::vector<TMask> MbrDyaFlgWeights;  // one a gene
  std::vector<const Data*> MbrDyaPtrDatSets;
  TGenTrainMeasure MbrMsrNetwork;
  std::vector<std::unique_ptr<TCopy>> MbrDyaPtrCopies;  // one a place
  std::vector<double> MbrDyaDblErrors;                  // one an individual
  TGenTrainRecord MbrRecLowest;
};

}  // namespace kiln
