#include "NeuralNets/TSimpleLayer.h"

#include <algorithm>
#include <iostream>

#include "NeuralNets/TBasicNetwork.h"

namespace kiln {

void TSimpleLayer::Compute(std::span<const double> pattern) {
  if (IsInputLayer()) {
    std::cout << "!Warning: changed input layer (TSimpleLayer)\n";
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
