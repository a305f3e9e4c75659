#include "Tarn/TCentreSteps.h"

#include <algorithm>

#include "Tarn/Centres.h"
#include "Tarn/TTarn.h"

namespace kiln {

TCentreSteps::TCentreSteps(TTarn& tarn)
    : inputs_(tarn.Centres(TTarn::kConditionLayer)),
      outputs_(tarn.Centres(TTarn::kOutputLayer)),
      input_distances_(inputs_.Weights().size()),
      output_distances_(outputs_.Weights().size()),
      before_(inputs_.Weights().size()) {
  inputs_.MeasureDistances(input_distances_);
  outputs_.MeasureDistances(output_distances_);
}

void TCentreSteps::Begin() {
  std::ranges::copy(inputs_.Weights(), before_.begin());
}

void TCentreSteps::End() {
  inputs_.LimitSteps(before_, kCentreStep);
  inputs_.PutInOrder(input_distances_);
  outputs_.PutInOrder(output_distances_);
}

}  // namespace kiln
