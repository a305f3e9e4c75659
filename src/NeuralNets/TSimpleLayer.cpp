#include "NeuralNets/TSimpleLayer.h"

#include <algorithm>

#include "NeuralNets/TBasicNetwork.h"
#include "Shared/Say.h"

namespace kiln {

void TSimpleLayer::Compute(std::span<const double> pattern) {
  if (IsInputLayer()) {
    SayLine("!Warning: changed input layer (TSimpleLayer)");
    std::ranges::copy(pattern, NetInputs().begin());
  } else {
    std::ranges::fill(NetInputs(), 0.0);
  }
  const TBasicNetwork& network = Network();
  for (const std::size_t from : network.Sources(Index())) {
    network.Connections(Index(), from).Accumulate(network.Layer(from).Outputs(), NetInputs());
  }
  Activate();
}

std::unique_ptr<TBasicLayer> TSimpleLayer::Clone() const {
  return std::make_unique<TSimpleLayer>(*this);
}

}  // namespace kiln
