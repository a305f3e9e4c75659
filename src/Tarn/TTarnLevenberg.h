#pragma once

#include <array>
#include <memory>
#include <vector>

#include "NeuralNets/Training/TLevenbergPass.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Levenberg-Marquardt for a Tarn, in which the centres learn with the weights of rules and actions.
// The change of a centre is measured in the distance to its nearest neighbour. The equations know
// of a triangle only the side on which each row is: a step moves a centre at most a quarter of the
// way to a neighbour, and then all centres are put in order at the distances that they had when the
// call began.
class TTarnLevenberg : public TLevenbergPass {
 public:
  // As for TLevenbergPass. REQUIRES: the network is a complete TTarn.
  TTarnLevenberg(TTrainState& state, const TTrainRun& run,
                 std::unique_ptr<TLayerwisePass> derivatives);

 private:
  // The centres of inputs, or of outputs.
  struct TSide {
    TSide(TTarn& tarn, std::size_t to, std::size_t from);

    std::size_t to;
    std::size_t from;
    TCentreConnections& centres;
    std::vector<double> distances;
  };

  void SetUnits(TWeightBuffer& units) override;
  void StepTaken(const TWeightBuffer& before) override;

  std::array<TSide, 2> sides_;
};

}  // namespace kiln
