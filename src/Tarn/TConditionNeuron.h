#pragma once

#include "NeuralNets/TBasicNeuron.h"

namespace kiln {

// A neuron that puts out the membership of the value of its input in one membership function. The
// layer knows which input and which function; the centre is the weight of the neuron's connection.
// REQUIRES: that layer is a TConditionLayer.
class TConditionNeuron : public TBasicNeuron {
 public:
  std::unique_ptr<TBasicNeuron> Clone() const override;
  double Membership(double x) const override;
};

}  // namespace kiln
