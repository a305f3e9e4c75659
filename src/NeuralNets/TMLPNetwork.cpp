#include "NeuralNets/TMLPNetwork.h"

#include <cstdint>
#include <string>

#include "NeuralNets/Limits.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

constexpr char kConstructor[] = "TMLPNetwork::TMLPNetwork";

[[noreturn]] void FailSize(const std::string& message) {
  throw TException(message, "Bad Parameter", kConstructor);
}

void CheckCount(std::uint64_t limit, std::uint64_t count, const char* parts) {
  CheckAtMost(limit, count, "a perceptron", parts, kConstructor);
}

// Adds everything up before a layer takes memory.
void CheckSizes(std::span<const int> sizes, bool bias) {
  if (sizes.empty()) FailSize("a perceptron needs a layer");
  const std::uint64_t bias_neurons = bias ? 1 : 0;
  std::uint64_t neurons = bias_neurons;
  std::uint64_t weights = 0;
  std::uint64_t sources = 0;  // neurons that lead to the layer
  for (const int size : sizes) {
    if (size < 1) FailSize("a layer of " + std::to_string(size) + " neurons is less than 1");
    const auto layer = static_cast<std::uint64_t>(size);
    neurons += layer;
    CheckCount(TBasicLayer::kMaxNeurons, neurons, "neurons");
    weights += sources * layer;
    CheckCount(TBasicNetwork::kMaxWeights, weights, "weights");
    sources = layer + bias_neurons;
  }
}

}  // namespace

TMLPNetwork::TMLPNetwork(std::span<const int> sizes, bool bias)
    : TConnectedNetwork(static_cast<int>(sizes.size()) + 1) {
  CheckSizes(sizes, bias);
  const auto size_of = [&](std::size_t layer) {
    return static_cast<std::size_t>(sizes[layer - 1]);
  };
  SetLayer(kBiasLayer, std::make_unique<TSimpleLayer>(bias ? 1 : 0));
  if (bias) Layer(kBiasLayer).SetActivation(ActBias);
  SetLayer(kInputLayer, std::make_unique<TSimpleInputLayer>(size_of(kInputLayer)));
  Layer(kInputLayer).SetActivation(ActLinear);
  for (std::size_t i = kInputLayer + 1; i < NumLayers(); ++i) {
    SetLayer(i, std::make_unique<TGainLayer>(size_of(i)));
    Layer(i).SetActivation(ActSigmoid);
    Connect(i - 1, i);
    if (bias) Connect(kBiasLayer, i);
  }
}

std::unique_ptr<TBasicNetwork> TMLPNetwork::Clone() const {
  return std::make_unique<TMLPNetwork>(*this);
}

}  // namespace kiln
