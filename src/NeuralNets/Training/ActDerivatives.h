#pragma once

#include <span>

#include "NeuralNets/TBasicLayer.h"

namespace kiln {

// Whether back-propagation knows the derivative of an activation function.
bool HasDerivative(TActFunction function);

// Multiplies the error terms of a layer by the derivative of its common activation function, which
// follows from the outputs. Both hold the same number of values for each neuron, one neuron after
// the other. With y the output, e the error term and g the gain of the neuron, e becomes
//   linear  e            linear-gain  g e
//   sigmoid y(1-y) e     sigmoid-gain y(1-y) g e
//   tanh    (1-y^2) e    tanh-gain    (1-y^2) g e
// REQUIRES: the layer has a common function, which has a derivative.
void ErrorsToDeltas(const TBasicLayer& layer, std::span<const double> outputs,
                    std::span<double> errors);

}  // namespace kiln
