#include "NeuralNets/PlainNetworks.h"

#include <typeinfo>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"

namespace kiln {

// Kinds are compared exactly: one that is derived from these may compute something else.
bool IsPlainLayer(const TBasicNetwork& network, std::size_t index) {
  const TBasicLayer& layer = network.Layer(index);
  if (index == network.InputLayer()) {
    return typeid(layer) == typeid(TSimpleInputLayer) && network.Sources(index).empty();
  }
  return typeid(layer) == typeid(TSimpleLayer) || typeid(layer) == typeid(TGainLayer);
}

bool IsFeedForward(const TBasicNetwork& network) {
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    const auto sources = network.Sources(layer);
    if (!sources.empty() && sources.back() >= layer) return false;
  }
  return true;
}

bool IsPlain(const TBasicNetwork& network) {
  if (!IsFeedForward(network)) return false;
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    if (!IsPlainLayer(network, layer)) return false;
  }
  return true;
}

void ComputeConstantLayers(TBasicNetwork& network) {
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    if (layer != network.InputLayer() && network.Sources(layer).empty()) {
      network.Layer(layer).Compute({});
    }
  }
}

}  // namespace kiln
