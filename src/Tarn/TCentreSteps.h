#pragma once

#include <span>
#include <vector>

#include "Tarn/TCentreConnections.h"

namespace kiln {

class TTarn;

// What becomes of the centres of a Tarn in the updates of one call to train. The gradients of input
// centres are scaled (see ScaleCentreGradients) and their steps shortened (see LimitCentreSteps);
// then all centres, those of outputs too, are put back in order at the distances that they had when
// the call began (see MeasureCentreDistances and PutCentresInOrder).
class TCentreSteps {
 public:
  // Measures the distances. REQUIRES: the network is complete and outlives the object.
  explicit TCentreSteps(TTarn& tarn);

  // Takes the derivatives by the centres of all inputs.
  void ScaleGradients(std::span<double> gradients) const { inputs_.ScaleGradients(gradients); }

  // To be called before and after each update.
  void Begin();
  void End();

 private:
  TCentreConnections& inputs_;
  TCentreConnections& outputs_;
  std::vector<double> input_distances_;
  std::vector<double> output_distances_;
  std::vector<double> before_;  // the centres of the inputs
};

}  // namespace kiln
