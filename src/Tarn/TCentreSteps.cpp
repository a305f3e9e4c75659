#include "Tarn/TCentreSteps.h"

#include <algorithm>

#include "Tarn/TTarn.h"

namespace kiln {

TCentreSteps::TCentreSteps(TTarn& tarn)
    : tarn_(tarn), before_(tarn.Layer(TTarn::kConditionLayer).NumNeurons()) {}

void TCentreSteps::Begin() {
  const TBasicConnections& centres = tarn_.Connections(TTarn::kConditionLayer, TTarn::kInputLayer);
  std::ranges::copy(centres.Weights(), before_.begin());
}

void TCentreSteps::End() {
  tarn_.LimitInputSteps(before_);
  tarn_.PutCentresInOrder();
}

}  // namespace kiln
