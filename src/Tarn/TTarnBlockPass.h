#pragma once

#include <vector>

#include "NeuralNets/Training/TBlockPass.h"

namespace kiln {

class TTarn;

// Back-propagation of several patterns at a time through the layers of a Tarn: what TTarnPass does
// for each pattern of a batch.
class TTarnBlockPass : public TBlockPass {
 public:
  // Adds gradients. REQUIRES: the network is a complete TTarn and fits; state and run outlive the
  // pass.
  TTarnBlockPass(TTrainState& state, const TTrainRun& run);

 protected:
  void TrainLayer(std::size_t layer) override;

 private:
  void TrainOutput(std::size_t output);
  void TrainConditionLayer();

  const TTarn& tarn_;
  std::vector<double> deltas_;  // of the output at hand, for each pattern
  std::vector<double> pulls_;   // - delta o, likewise
};

}  // namespace kiln
