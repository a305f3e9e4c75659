#include "Bramble/DeathCap.h"

#include <cstdint>
#include <utility>

#include "Shared/TAssertion.h"

namespace kiln {

namespace {

constexpr std::uint32_t kFirstGeneration = 1;

}  // namespace

DeathCap::DeathCap(MetaChrom genome)
    : MbrPtrMchGenome(std::make_shared<const MetaChrom>(std::move(genome))),
      MbrPopCurrent(kFirstGeneration, 0, MbrPtrMchGenome),
      MbrPopWorking(kFirstGeneration, 0, MbrPtrMchGenome),
      MbrPopChildren(kFirstGeneration, 0, MbrPtrMchGenome) {}

void DeathCap::Populate(std::size_t size) {
  MbrPopCurrent = Population(kFirstGeneration, size, MbrPtrMchGenome);
}

void DeathCap::Seed(std::span<const GeneValue> values) {
  const auto identifier = static_cast<std::uint32_t>(MbrPopCurrent.Size() + 1);
  MbrPopCurrent.Add(Individual(identifier, Chromosome::Of(MbrPtrMchGenome, values)));
}

std::vector<std::span<GeneValue>> DeathCap::ExportCurrent() {
  std::vector<std::span<GeneValue>> genes;
  MbrPopCurrent.Export(genes);
  return genes;
}

GeneticStatus DeathCap::Run(const RunSettings& settings, Evaluator& evaluator, Reporter& reporter) {
  Assert(MbrPopCurrent.Size() != 0, "NdxPopSize != 0");
  Assert(settings.NdxElites <= MbrPopCurrent.Size(), "NdxElites <= NdxPopSize");
  MbrPopWorking = MbrPopCurrent;
  Crossover crossover(settings.IntCrossover);
  for (int generation = 1;; ++generation) {
    Evaluate(evaluator);
    const bool goes_on = reporter.Report(MbrPopWorking);
    const bool below_target = MbrPopWorking.Statistics().FltMaximum < settings.FltTarget;
    if (!goes_on || !below_target || generation >= settings.IntGenerations) {
      return GeneticStatus::SUCCESS;
    }
    const GeneticStatus status = NextGeneration(settings, crossover);
    if (status != GeneticStatus::SUCCESS) return status;
  }
}

void DeathCap::Evaluate(Evaluator& evaluator) {
  MbrPopWorking.Export(MbrDyaSpnGenes);
  MbrDyaFltFitness.assign(MbrPopWorking.Size(), 0.0F);
  evaluator.EvaluatePopulation(ExportGenome(), MbrDyaSpnGenes, MbrDyaFltFitness);
  MbrPopWorking.SetFitness(MbrDyaFltFitness);
}

// The children are bred beside their parents and then change places with them.
GeneticStatus DeathCap::NextGeneration(const RunSettings& settings, Crossover& crossover) {
  if (settings.BolScale) MbrPopWorking.ScaleFitness(ScalingMethod::kLinear);
  const std::size_t children = MbrPopWorking.Size() - settings.NdxElites;
  GeneticStatus status =
      MbrPopWorking.Breed(children, settings.MtdSelection, crossover, MbrPopChildren);
  if (status == GeneticStatus::SUCCESS) status = MbrPopChildren.Mutate(settings.FltMutation);
  if (status != GeneticStatus::SUCCESS) return status;
  if (settings.NdxElites > 0) MbrPopChildren.AddElites(&MbrPopWorking, settings.NdxElites);
  std::swap(MbrPopWorking, MbrPopChildren);
  return GeneticStatus::SUCCESS;
}

}  // namespace kiln
