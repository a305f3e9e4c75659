#pragma once

#include "NeuralNets/TTrainModule.h"

namespace kiln {

// Back-propagation for layers of weighted sums. With y the output of a neuron, e its error term and
// g its gain, the delta that each of its inputs multiplies to give the gradient of a weight is
//   linear  e            linear-gain  g e
//   sigmoid y(1-y) e     sigmoid-gain y(1-y) g e
//   tanh    (1-y^2) e    tanh-gain    (1-y^2) g e
// and e for a sigmoid output layer under cross entropy. Other functions cannot be trained.
//
// Only connections from lower to higher layers are trained.
class TBackpropModule : public TTrainModule {
 public:
  using TTrainModule::TTrainModule;

 protected:
  void CheckLayers(const TTrainRun& run) const override;
  void TrainLayer(const TTrainRun& run, std::size_t layer) override;

  // Checks one layer: TAssertion unless its function can be trained, where it has to be.
  void CheckLayer(const TTrainRun& run, std::size_t layer) const;

  // Turns the error terms of a layer into its deltas, in place.
  void ErrorsToDeltas(const TTrainRun& run, std::size_t layer);

 private:
  bool IsCrossEntropyOutput(const TTrainRun& run, std::size_t layer) const;
};

}  // namespace kiln
