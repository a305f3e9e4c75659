#include "NeuralNets/Training/TRprop.h"

#include <algorithm>

namespace kiln {

TRprop::TRprop(std::size_t weights, const TConstants& constants)
    : weights_(weights, {constants.first_step}), largest_step_(constants.largest_step) {}

void TRprop::Begin(double error, const TConstants& constants) {
  largest_step_ = constants.largest_step;
  has_risen_ = error > error_;
  error_ = error;
}

void TRprop::Move(std::size_t first, const TWeightPatch& patch, const double* gradients) {
  for (std::size_t i = 0; i < patch.Size(); ++i) {
    if (patch.masks != nullptr && patch.masks[i] != FMaskAll) continue;
    Move(weights_[first + i], gradients[i], patch.weights[i]);
  }
}

void TRprop::Move(TWeight& own, double gradient, double& weight) const {
  const double turn = gradient * own.gradient;
  if (turn < 0.0) {
    own.step = std::max(own.step * kShrinkage, kLeastStep);
    own.gradient = 0.0;
    if (has_risen_) weight -= own.change;
    return;
  }
  if (turn > 0.0) own.step = std::min(own.step * kGrowth, largest_step_);
  own.gradient = gradient;
  own.change = gradient > 0.0 ? -own.step : gradient < 0.0 ? own.step : 0.0;
  weight += own.change;
}

}  // namespace kiln
