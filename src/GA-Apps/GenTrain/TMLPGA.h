#pragma once

#include <memory>
#include <utility>

#include "GA-Apps/GenTrain/TGenTrain.h"
#include "GA-Apps/GenTrain/TMLPGAEval.h"
#include "NeuralNets/TMLPNetwork.h"

namespace kiln {

// Genetic training of a perceptron.
class TMLPGA : public TGenTrain {
 public:
  // Throws as TGenTrain does.
  TMLPGA(std::shared_ptr<TMLPNetwork> network, const TWeightBounds& bounds, std::size_t population)
      : TGenTrain(network, bounds, population), MbrPtrNetPerceptron(std::move(network)) {}

 private:
  std::unique_ptr<TGenTrainEval> MakeEvaluator() const override {
    return std::make_unique<TMLPGAEval>(*MbrPtrNetPerceptron, Bounds());
  }

  std::shared_ptr<TMLPNetwork> MbrPtrNetPerceptron;
};

}  // namespace kiln
