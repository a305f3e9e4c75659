#include "NeuralNets/Training/TAdam.h"

#include <cmath>

namespace kiln {

void TAdam::Begin(int rows, const TConstants& constants) {
  constants_ = constants;
  share_ = 1.0 / rows;
  power1_ *= constants.beta1;
  power2_ *= constants.beta2;
  const double root = std::sqrt(1.0 - power2_);
  rate_ = constants.rate * root / (1.0 - power1_);
  epsilon_ = constants.epsilon * root;
}

void TAdam::Move(std::size_t first, const TWeightPatch& patch, const double* gradients) {
  const double beta1 = constants_.beta1;
  const double beta2 = constants_.beta2;
  double* __restrict m = means_.data() + first;
  double* __restrict v = squares_.data() + first;
  double* __restrict w = patch.weights;
#pragma omp simd
  for (std::size_t i = 0; i < patch.Size(); ++i) {
    const double g = share_ * gradients[i];
    m[i] = beta1 * m[i] + (1.0 - beta1) * g;
    v[i] = beta2 * v[i] + (1.0 - beta2) * g * g;
    const double step = rate_ * m[i] / (std::sqrt(v[i]) + epsilon_);
    w[i] -= patch.masks == nullptr || patch.masks[i] == FMaskAll ? step : 0.0;
  }
}

}  // namespace kiln
