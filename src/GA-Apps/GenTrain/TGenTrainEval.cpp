#include "GA-Apps/GenTrain/TGenTrainEval.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "Shared/Narrowing.h"
#include "Shared/Random.h"
#include "Shared/TException.h"
#include "Shared/TTeam.h"

namespace kiln {

namespace {

constexpr double kBeyondRepair = -1.0;  // in place of an error
constexpr char kSetData[] = "TGenTrainEval::SetData";

float FitnessOf(double error) {
  return error == 0.0 ? TGenTrainEval::kFitnessWithoutError : ToSingle(1.0 / error);
}

std::vector<TMask> FlagsOf(const TBasicNetwork& network) {
  std::vector<TMask> weights;
  TIterateObjGetFlags flags(weights, FMaskAll);
  network.Read(flags);
  return weights;
}

}  // namespace

TGenTrainEval::TGenTrainEval(TBasicNetwork& network)
    : MbrNetNetwork(network),
      MbrDyaFlgWeights(FlagsOf(network)),
      MbrMsrNetwork(network, MbrDyaFlgWeights) {}

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

TGenTrainRecord TGenTrainEval::Evaluate(std::span<const GeneValue> genes) {
  SetGenes(genes);
  const double error = Error();
  return {error, FitnessOf(error)};
}

// An individual is worth its recalls of all rows. Where connections lead back, what one individual
// leaves in the network is seen by the next: they have to come one after the other, as if there
// were nothing to share.
double TGenTrainEval::OperationsOfOne() const {
  if (!IsFeedForward(MbrNetNetwork)) return 0.0;
  double rows = 0.0;
  for (const Data* set : MbrDyaPtrDatSets) rows += set->DataRows();
  return 2.0 * rows * static_cast<double>(MbrDyaFlgWeights.size());
}

// Each worker makes its own copy, which then lies apart from those of others.
TGenTrainMeasure& TGenTrainEval::MeasureAt(std::size_t place) {
  if (MbrDyaPtrCopies.empty()) return MbrMsrNetwork;
  std::unique_ptr<TCopy>& copy = MbrDyaPtrCopies[place];
  if (!copy) copy = std::make_unique<TCopy>(MbrNetNetwork, MbrDyaFlgWeights);
  return copy->MsrNetwork;
}

void TGenTrainEval::EvaluatePopulation(std::span<const MetaGene>,
                                       std::span<const std::span<GeneValue>> genes,
                                       std::span<float> fitness) {
  const double operations = OperationsOfOne();
  const std::size_t workers = TTeam::WorkersFor(genes.size(), operations);
  if (workers > 1) MbrDyaPtrCopies.resize(std::max(workers, MbrDyaPtrCopies.size()));
  MbrDyaDblErrors.resize(genes.size());
  // Other ranks hand over errors alone, so each repairs all genes.
  TTeam::ForEach(genes.size(), workers, [&](std::size_t i, std::size_t) {
    MbrDyaDblErrors[i] = Repair(genes[i]) ? 0.0 : kBeyondRepair;
  });
  TTeam::Collect<double>(MbrDyaDblErrors, operations, workers,
                         [&](std::size_t i, std::size_t place) {
                           if (MbrDyaDblErrors[i] == kBeyondRepair) return kBeyondRepair;
                           TGenTrainMeasure& measure = MeasureAt(place);
                           measure.SetGenes(genes[i]);
                           return measure.Error(MbrDyaPtrDatSets);
                         });
  MbrRecLowest = {};
  for (std::size_t i = 0; i < genes.size(); ++i) fitness[i] = Rate(MbrDyaDblErrors[i]);
}

double TGenTrainEval::AverageError() const {
  double sum = 0.0;
  int count = 0;
  for (const double error : MbrDyaDblErrors) {
    if (error == kBeyondRepair || !(error < TGenTrainRecord{}.DblError)) continue;
    sum += error;
    ++count;
  }
  return sum / count;
}

// The fitness of an individual, which is taken note of when its error is the lowest so far.
float TGenTrainEval::Rate(double error) {
  if (error == kBeyondRepair) return static_cast<float>(Random::Uniform(0.0, 0.5));
  const float fitness = FitnessOf(error);
  // Of errors that fitness doesn't tell apart the last counts: that individual ranks highest.
  const bool counts = error < TGenTrainRecord{}.DblError;
  if (counts && fitness >= MbrRecLowest.FltFitness) MbrRecLowest = {error, fitness};
  return fitness;
}

}  // namespace kiln
