#pragma once

#include <memory>

#include "NeuralNets/Training/TBackpropModule.h"
#include "Tarn/TCentreSteps.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Back-propagation for a Tarn: gradient descent on all of its weights, the centres of the terms
// included (see TTarnPass).
//
// After each update the steps of input centres are shortened and all centres put back in order (see
// TCentreSteps); the change that momentum remembers is that before it. A weight penalty acts on the
// weights into rules and actions alone (see TCentreConnections).
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
  std::unique_ptr<TTrainPass> MakePass(const TTrainRun& run) override;
  void Update(const TTrainRun& run, double share) override;

 private:
  TCentreSteps steps_;
};

}  // namespace kiln
