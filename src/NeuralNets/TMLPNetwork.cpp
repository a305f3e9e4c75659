#include "NeuralNets/TMLPNetwork.h"

#include <string>

#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

constexpr std::size_t kBiasLayer = 0;
constexpr std::size_t kInputLayer = 1;

std::size_t CheckedSize(int size) {
  if (size < 1) {
    throw TException("a layer of " + std::to_string(size) + " neurons is less than 1",
                     "Bad Parameter", "TMLPNetwork::TMLPNetwork");
  }
  return static_cast<std::size_t>(size);
}

}  // namespace

TMLPNetwork::TMLPNetwork(std::span<const int> sizes, bool bias)
    : TConnectedNetwork(static_cast<int>(sizes.size()) + 1) {
  if (sizes.empty()) {
    throw TException("a perceptron needs a layer", "Bad Parameter", "TMLPNetwork::TMLPNetwork");
  }
  SetLayer(kBiasLayer, std::make_unique<TSimpleLayer>(bias ? 1 : 0));
  if (bias) Layer(kBiasLayer).SetActivation(ActBias);
  SetLayer(kInputLayer, std::make_unique<TSimpleInputLayer>(CheckedSize(sizes[0])));
  Layer(kInputLayer).SetActivation(ActLinear);
  for (std::size_t i = kInputLayer + 1; i < NumLayers(); ++i) {
    SetLayer(i, std::make_unique<TGainLayer>(CheckedSize(sizes[i - 1])));
    Layer(i).SetActivation(ActSigmoid);
    Connect(i - 1, i);
    if (bias) Connect(kBiasLayer, i);
  }
}

std::unique_ptr<TBasicNetwork> TMLPNetwork::Clone() const {
  return std::make_unique<TMLPNetwork>(*this);
}

}  // namespace kiln
