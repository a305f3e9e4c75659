#pragma once

#include <cstddef>
#include <memory>

#include "NeuralNets/Training/TTrainModule.h"

namespace kiln {

// Back-propagation for layers of weighted sums. The delta of a neuron, which each of its inputs
// multiplies to give the gradient of a weight, is its error term times the derivative of its
// activation function (see ActDerivatives), or the error term itself for a sigmoid output layer
// under cross entropy. Functions without a known derivative cannot be trained.
//
// Only connections from lower to higher layers are trained.
class TBackpropModule : public TTrainModule {
 public:
  using TTrainModule::TTrainModule;

 protected:
  void CheckLayers(const TTrainRun& run) const override;

  // The fastest way that the network and the run can go; which that is, the table above the
  // definition says.
  std::unique_ptr<TTrainPass> MakePass(TTrainState& state, const TTrainRun& run) override;
  std::unique_ptr<TTrainPass> MakeLevenbergPass(const TTrainRun& run) override;

  // Checks one layer: TAssertion unless its function can be trained, where it has to be.
  void CheckLayer(const TTrainRun& run, std::size_t layer) const;
};

}  // namespace kiln
