#pragma once

#include "NeuralNets/TBasicLayer.h"

namespace kiln {

// The layer that a pattern enters: its outputs are the values of the pattern, without an activation
// function. Elsewhere than at the input of a network it warns on the console at every recall and
// puts out zeros.
class TSimpleInputLayer : public TBasicLayer {
 public:
  explicit TSimpleInputLayer(std::size_t neurons) : TBasicLayer(neurons, TBasicNeuron()) {}

  void Compute(std::span<const double> pattern) override;
  std::string_view KindName() const override { return "Input"; }
  std::unique_ptr<TBasicLayer> Clone() const override;
};

}  // namespace kiln
