#include "GA-Apps/GenTrain/TGenTrainEval.h"

#include "DataObject/Data.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "Shared/Narrowing.h"
#include "Shared/Random.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

constexpr char kSetData[] = "TGenTrainEval::SetData";

float FitnessOf(double error) {
  return error == 0.0 ? TGenTrainEval::kFitnessWithoutError : ToSingle(1.0 / error);
}

}  // namespace

TGenTrainEval::TGenTrainEval(TBasicNetwork& network)
    : MbrNetNetwork(network), MbrRclRecall(network), MbrErrError(network.NumOutputs()) {
  TIterateObjGetFlags flags(MbrDyaFlgWeights, FMaskAll);
  network.Read(flags);
}

void TGenTrainEval::SetData(std::span<const Data* const> sets) {
  if (sets.empty()) throw TException("no data sets", "Bad Parameter", kSetData);
  for (const Data* set : sets) {
    MbrNetNetwork.CheckFits(*set, kSetData);
    if (set->DataRows() == 0) {
      throw TException("the data set has no rows", "Invalid Parameter", kSetData);
    }
  }
  MbrDyaPtrDatSets.assign(sets.begin(), sets.end());
}

MetaChrom TGenTrainEval::Genome() const {
  const std::vector<GeneValue> present = SeedGenome();
  MetaChrom genome;
  for (std::size_t gene = 0; gene < present.size(); ++gene) {
    const float weight = present[gene].Real();
    genome.Append(IsTrained(gene) ? DefinitionOf(gene) : MetaGene::Real(weight, weight));
  }
  return genome;
}

std::vector<GeneValue> TGenTrainEval::SeedGenome() const {
  std::vector<GeneValue> genes;
  for (const double weight : MbrNetNetwork.GetWeights(FMaskAll)) {
    genes.push_back(GeneValue::OfReal(ToSingle(weight)));
  }
  return genes;
}

// Walks the blocks in the one order of weights.
void TGenTrainEval::SetGenes(std::span<const GeneValue> genes) {
  std::size_t gene = 0;
  for (std::size_t from = 0; from < MbrNetNetwork.NumLayers(); ++from) {
    for (std::size_t to = 0; to < MbrNetNetwork.NumLayers(); ++to) {
      for (double& weight : MbrNetNetwork.Connections(to, from).Weights()) {
        if (IsTrained(gene)) weight = genes[gene].Real();
        ++gene;
      }
    }
  }
}

double TGenTrainEval::Error() {
  double sum = 0.0;
  for (const Data* set : MbrDyaPtrDatSets) {
    MbrErrError.Reset();
    sum += MbrRclRecall.Error(*set, MbrErrError);
  }
  return sum / static_cast<double>(MbrDyaPtrDatSets.size());
}

TGenTrainRecord TGenTrainEval::Evaluate(std::span<const GeneValue> genes) {
  SetGenes(genes);
  const double error = Error();
  return {error, FitnessOf(error)};
}

void TGenTrainEval::EvaluatePopulation(std::span<const MetaGene>,
                                       std::span<const std::span<GeneValue>> genes,
                                       std::span<float> fitness) {
  MbrRecLowest = {};
  for (std::size_t i = 0; i < genes.size(); ++i) {
    if (!Repair(genes[i])) {
      fitness[i] = static_cast<float>(Random::Uniform(0.0, 0.5));
      continue;
    }
    const TGenTrainRecord record = Evaluate(genes[i]);
    // Of errors that fitness doesn't tell apart the last counts: that individual ranks highest.
    const bool counts = record.DblError < TGenTrainRecord{}.DblError;
    if (counts && record.FltFitness >= MbrRecLowest.FltFitness) MbrRecLowest = record;
    fitness[i] = record.FltFitness;
  }
}

}  // namespace kiln
