#include "NeuralNets/TSimpleInputLayer.h"

#include <algorithm>

#include "Shared/Say.h"

namespace kiln {

void TSimpleInputLayer::Compute(std::span<const double> pattern) {
  if (!IsInputLayer()) {
    SayLine("!Warning: changed input layer (TSimpleInputLayer)");
    std::ranges::fill(Outputs(), 0.0);
    return;
  }
  std::ranges::copy(pattern, Outputs().begin());
}

std::unique_ptr<TBasicLayer> TSimpleInputLayer::Clone() const {
  return std::make_unique<TSimpleInputLayer>(*this);
}

}  // namespace kiln
