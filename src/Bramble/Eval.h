#pragma once

#include <span>

#include "Bramble/GeneValue.h"
#include "Bramble/MetaGene.h"
#include "Bramble/Population.h"

namespace kiln {

// What a population is bred for. Supplied by the caller of a run.
class Evaluator {
 public:
  virtual ~Evaluator() = default;

  // Stores the fitness of each individual, the higher the better. Not-a-number counts as 0; whoever
  // has 0 or less has no children.
  //
  // `genome` defines the genes of every individual, and genes[i] are the values of the i-th as the
  // population stores them: an evaluator may repair them, and its repairs are inherited.
  // `fitness` has as many places as there are individuals.
  virtual void EvaluatePopulation(std::span<const MetaGene> genome,
                                  std::span<const std::span<GeneValue>> genes,
                                  std::span<float> fitness) = 0;
};

// Who is told of every generation of a run.
class Reporter {
 public:
  virtual ~Reporter() = default;

  // The population as it was just evaluated: its generation, statistics, best individual and
  // everybody else. Returns whether the run may go on.
  virtual bool Report(const Population& evaluated) = 0;
};

}  // namespace kiln
