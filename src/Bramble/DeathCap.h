#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "Bramble/Bramble10.h"
#include "Bramble/Eval.h"

namespace kiln {

// The settings of one run.
struct RunSettings {
  int IntGenerations = 1;      // evaluated at most; below 1 counts as 1
  float FltTarget = 0.0F;      // the fitness that ends the run
  std::size_t NdxElites = 1;   // individuals taken over as they are, at most the population's size
  int IntCrossover = 1;        // points, see Crossover
  float FltMutation = 0.001F;  // probability of each gene of each child
  SelectionMethod MtdSelection = SelectionMethod::kRoulette;
  bool BolScale = true;  // linear scaling before selection
};

// The driver: breeds generation after generation until one is good enough.
//
//   DeathCap driver(genome);
//   driver.Populate(99);
//   driver.Seed(present_weights);
//   if (driver.Run(settings, evaluator, reporter) == GeneticStatus::SUCCESS) driver.AdoptWorking();
//
// A run works on a clone: the current population stays as it is until the caller adopts the result.
class DeathCap {
 public:
  explicit DeathCap(MetaChrom genome);

  // The genome as a plain array.
  std::span<const MetaGene> ExportGenome() const { return MbrPtrMchGenome->Export(); }

  // --- The current population ----------------------------------------------------------------

  // Replaces it by `size` random individuals of generation 1; 0 leaves it empty for seeds.
  void Populate(std::size_t size);

  // Adds an individual with these genes; its identifier is the new size. Throws TAssertion unless
  // there is one value for every gene of the genome. They may lie outside its bounds.
  void Seed(std::span<const GeneValue> values);

  Population& Current() { return MbrPopCurrent; }
  const Population& Current() const { return MbrPopCurrent; }

  // The genes of every individual of the current population. What is written there changes the
  // population.
  std::vector<std::span<GeneValue>> ExportCurrent();

  // --- Running -------------------------------------------------------------------------------

  // Evaluates a generation, reports it and breeds the next from it, until a generation reaches the
  // target, settings.IntGenerations of them are evaluated, or the reporter asks for an end. So at
  // least one is evaluated, and the last is always evaluated, not scaled, and reported once.
  //
  // Breeding: scale the fitness if so set, breed Size() - elites children, mutate them, add the
  // elites.
  //
  // Returns SUCCESS or the first status that stopped breeding: kGeneUndefined, kGeneImmutable,
  // kUnknownSelection. Throws TAssertion when the population is empty, has fewer individuals than
  // elites, or nobody has a fitness to breed from. Whatever the evaluator or reporter throws ends
  // the run; then the working population is in no defined generation.
  GeneticStatus Run(const RunSettings& settings, Evaluator& evaluator, Reporter& reporter);

  // The result of the last run; before any, an empty population.
  const Population& Working() const { return MbrPopWorking; }

  // The working population becomes the current one.
  void AdoptWorking() { MbrPopCurrent = MbrPopWorking; }

 private:
  void Evaluate(Evaluator& evaluator);
  GeneticStatus NextGeneration(const RunSettings& settings, Crossover& crossover);

  std::shared_ptr<const MetaChrom> MbrPtrMchGenome;
  Population MbrPopCurrent;
  Population MbrPopWorking;
  Population MbrPopChildren;  // of the working one while they are bred; its storage afterwards
  std::vector<std::span<GeneValue>> MbrDyaSpnGenes;  // the export of the working population
  std::vector<float> MbrDyaFltFitness;
};

}  // namespace kiln
