#pragma once

#include <vector>

namespace kiln {

class TTarn;

// What becomes of the centres of a Tarn in an update of its weights: the steps of input centres are
// shortened (see LimitCentreSteps), then all centres put back in order (see PutCentresInOrder).
class TCentreSteps {
 public:
  // REQUIRES: the network is complete and outlives the object.
  explicit TCentreSteps(TTarn& tarn);

  // Called before and after each update.
  void Begin();
  void End();

 private:
  TTarn& tarn_;
  std::vector<double> before_;  // the centres of the inputs
};

}  // namespace kiln
