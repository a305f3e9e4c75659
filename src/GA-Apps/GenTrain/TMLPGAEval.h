#pragma once

#include "GA-Apps/GenTrain/TGenTrainEval.h"
#include "NeuralNets/TMLPNetwork.h"

namespace kiln {

// Breeds perceptrons: any weight within the bounds makes sense.
class TMLPGAEval : public TGenTrainEval {
 public:
  // REQUIRES: as for TGenTrainEval.
  TMLPGAEval(TMLPNetwork& network, const TWeightBounds& bounds)
      : TGenTrainEval(network),
        MbrMgnWeight(MetaGene::Real(bounds.FltMinimum, bounds.FltMaximum)) {}

  bool Repair(std::span<GeneValue>) const override { return true; }

 protected:
  MetaGene DefinitionOf(std::size_t) const override { return MbrMgnWeight; }

 private:
  MetaGene MbrMgnWeight;
};

}  // namespace kiln
