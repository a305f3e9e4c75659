#pragma once

#include <vector>

#include "NeuralNets/Training/TLayerwisePass.h"
#include "Tarn/TCentreSteps.h"

namespace kiln {

// Back-propagation through the layers of a Tarn. With e the error term of an output o, and a, w and
// S as in TTarnOutputLayer,
//   dE/dw = e a / S    dE/da = e (w - o) / S, both 0 where S is 0;
// how a membership moves the centres around it, AddCentreGradients says.
class TTarnPass : public TLayerwisePass {
 public:
  // Hands `steps` each update that the pass itself makes.
  // REQUIRES: the network is a complete TTarn; everything given outlives the pass.
  TTarnPass(TTrainState& state, const TTrainRun& run, TCentreSteps& steps);

 protected:
  void TrainPattern(const DataRow& row, TErrorObj& error) override;
  void TrainLayer(std::size_t layer) override;

 private:
  void TrainOutputLayer();
  void TrainConditionLayer();

  const TTarn& tarn_;
  TCentreSteps& steps_;
  std::vector<double> ones_;              // one an input
  std::vector<double> centre_gradients_;  // of the condition layer, for the pattern at hand
};

}  // namespace kiln
