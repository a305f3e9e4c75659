#pragma once

#include "NeuralNets/TBasicLayer.h"

namespace kiln {

// A layer of weighted sums: the net input of a neuron is the sum, over every layer that is
// connected to this one, of weight times output; its output is the activation function of that.
//
// As the input layer of a network, such a layer warns on the console at every recall, and its sums
// start from the values of the pattern instead of zeros.
class TSimpleLayer : public TBasicLayer {
 public:
  explicit TSimpleLayer(std::size_t neurons) : TSimpleLayer(neurons, TBasicNeuron()) {}

  void Compute(std::span<const double> pattern) override;
  std::string_view KindName() const override { return "Simple"; }
  std::unique_ptr<TBasicLayer> Clone() const override;

 protected:
  TSimpleLayer(std::size_t neurons, const TBasicNeuron& prototype)
      : TBasicLayer(neurons, prototype) {}
};

}  // namespace kiln
