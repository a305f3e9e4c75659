#pragma once

#include <memory>
#include <utility>

#include "GA-Apps/GenTrain/TGenTrain.h"
#include "GA-Apps/GenTrain/TTarnGAEval.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Genetic training of a Tarn.
class TTarnGA : public TGenTrain {
 public:
  // Throws as TGenTrain does. REQUIRES: network->IsComplete().
  TTarnGA(std::shared_ptr<TTarn> network, const TWeightBounds& bounds, std::size_t population)
      : TGenTrain(network, bounds, population), MbrPtrNetTarn(std::move(network)) {}

  // The network that is trained. Flags that change after Initialise come too late.
  TTarn& Tarn() { return *MbrPtrNetTarn; }

 private:
  std::unique_ptr<TGenTrainEval> MakeEvaluator() const override {
    return std::make_unique<TTarnGAEval>(*MbrPtrNetTarn, Bounds());
  }

  std::shared_ptr<TTarn> MbrPtrNetTarn;
};

}  // namespace kiln
