#pragma once

#include "NeuralNets/TSimpleLayer.h"

namespace kiln {

// A layer of weighted sums whose neurons carry a gain.
class TGainLayer : public TSimpleLayer {
 public:
  explicit TGainLayer(std::size_t neurons, double gain = 1.0);

  // Sets the gain of every neuron.
  void SetGain(double gain);

  std::string_view KindName() const override { return "Gain"; }
  std::unique_ptr<TBasicLayer> Clone() const override;
};

}  // namespace kiln
