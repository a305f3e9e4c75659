#pragma once

#include <vector>

namespace kiln {

class TTarn;

// Sees to the centres of a Tarn when its weights are updated: shortens the steps of the centres of
// inputs (see LimitCentreSteps), then puts all centres back in order (see PutCentresInOrder).
class TCentreSteps {
 public:
  // REQUIRES: the network is complete and outlives the object.
  explicit TCentreSteps(TTarn& tarn);

  // To be called before and after each update.
  void Begin();
  void End();

 private:
  TTarn& tarn_;
  std::vector<double> before_;  // the centres of the inputs
};

}  // namespace kiln
