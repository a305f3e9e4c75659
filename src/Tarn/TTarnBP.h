#pragma once

#include <memory>
#include <vector>

#include "NeuralNets/Training/TBackpropModule.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Back-propagation for a Tarn: gradient descent on all of its weights, the centres of the terms
// included. Rule and action layers train as those of any network. With e the error term of an
// output o, and a, w and S as in TTarnOutputLayer,
//   dE/dw = e a / S    dE/da = e (w - o) / S, both 0 where S is 0;
// how a membership moves the centres around it, AddCentreGradients says.
//
// After each update the steps of input centres are shortened (see LimitCentreSteps) and all centres
// put back in order; the change that momentum remembers is that before it. A weight penalty acts on
// the weights into rules and actions alone: forgetting would pull the centres to 0.
class TTarnBP : public TBackpropModule {
 public:
  // REQUIRES: network->IsComplete().
  explicit TTarnBP(std::shared_ptr<TTarn> network);

  // As for every network, but training can also fail half-way: TAssertion when an output leaves
  // [0, 1], because of a frozen centre outside or weights that overflow. The network and the last
  // changes are as before then.
  double Train(const Data& data, TKQstructure& params, int& epochs,
               const TEpochObserver& observer = {}) override;

 protected:
  void CheckLayers(const TTrainRun& run) const override;
  void TrainLayer(const TTrainRun& run, std::size_t layer) override;
  void WeightsChanged() override;
  bool IsPenalised(std::size_t to, std::size_t from) const override;

 private:
  void TrainOutputLayer(const TTrainRun& run);
  void TrainConditionLayer(const TTrainRun& run);

  TTarn& tarn_;
  std::vector<double> ones_;              // one an input
  std::vector<double> centre_gradients_;  // of the condition layer, for the pattern at hand
  std::vector<double> centres_before_;    // of the inputs, before the next update
};

}  // namespace kiln
