#pragma once

#include <doublefann.h>

#include <memory>
#include <vector>

namespace kiln {

using TFannNetwork = std::unique_ptr<fann, decltype(&fann_destroy)>;

// A perceptron of FANN of sigmoid layers, with a bias neuron in every layer but the last.
inline TFannNetwork MakeFannNetwork(const std::vector<int>& sizes) {
  const std::vector<unsigned> layers(sizes.begin(), sizes.end());
  TFannNetwork network(
      fann_create_standard_array(static_cast<unsigned>(layers.size()), layers.data()),
      fann_destroy);
  fann_set_activation_function_hidden(network.get(), FANN_SIGMOID);
  fann_set_activation_function_output(network.get(), FANN_SIGMOID);
  return network;
}

}  // namespace kiln
