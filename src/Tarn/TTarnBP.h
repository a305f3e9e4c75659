#pragma once

#include <memory>
#include <optional>

#include "NeuralNets/Training/TBackpropModule.h"
#include "Tarn/TCentreSteps.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Back-propagation for a Tarn: gradient descent on all of its weights, the centres of the terms
// included (see TTarnPass).
//
// Centres go by rules of their own (see TCentreSteps); the change of a centre that momentum
// remembers is that before its step is shortened and it is put back in order. A weight penalty acts
// on the weights into rules and actions alone (see TCentreConnections).
class TTarnBP : public TBackpropModule {
 public:
  // REQUIRES: network->IsComplete().
  explicit TTarnBP(std::shared_ptr<TTarn> network);

  // The network that is trained.
  TTarn& Tarn() { return static_cast<TTarn&>(Network()); }

 protected:
  void CheckLayers(const TTrainRun& run) const override;
  std::unique_ptr<TTrainPass> MakePass(TTrainState& state, const TTrainRun& run) override;
  std::unique_ptr<TTrainPass> MakeLevenbergPass(const TTrainRun& run) override;
  void Update(const TTrainRun& run, int rows, const TErrorObj& error) override;

 private:
  std::optional<TCentreSteps> steps_;  // of the latest run
};

}  // namespace kiln
