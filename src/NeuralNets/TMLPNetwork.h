#pragma once

#include <span>

#include "NeuralNets/TConnectedNetwork.h"

namespace kiln {

// The multi-layer perceptron. Layer 0 is the bias layer, one neuron that puts out 1, or empty;
// layer 1 is the input; the layers behind it are sigmoid layers of gain 1 to begin with, each
// connected with the layer before it and the bias layer, and the last of them is the output.
class TMLPNetwork : public TConnectedNetwork {
 public:
  static constexpr std::size_t kBiasLayer = 0;
  static constexpr std::size_t kInputLayer = 1;

  // A perceptron of the given layer sizes, input first, every weight 0. Throws TException unless
  // there is a size, none is below 1, and all layers together have at most TBasicLayer::kMaxNeurons
  // neurons and kMaxWeights weights.
  TMLPNetwork(std::span<const int> sizes, bool bias);

  // `layers` layers and the bias layer, all of them empty, for a reader that fills them.
  explicit TMLPNetwork(int layers) : TConnectedNetwork(layers + 1) {}

  std::string_view KindName() const override { return "MLP"; }
  std::unique_ptr<TBasicNetwork> Clone() const override;
};

}  // namespace kiln
