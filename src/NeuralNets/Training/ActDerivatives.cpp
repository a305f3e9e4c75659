#include "NeuralNets/Training/ActDerivatives.h"

#include <algorithm>
#include <array>

namespace kiln {

namespace {

// How to multiply errors by the derivative of a function, from its outputs and without its gain.
struct TDerivative {
  TActFunction function;
  void (*multiply)(std::span<const double> outputs, std::span<double> errors);
  bool has_gain;
};

void Linear(std::span<const double>, std::span<double>) {}

void Sigmoid(std::span<const double> outputs, std::span<double> errors) {
  for (std::size_t i = 0; i < errors.size(); ++i) errors[i] *= (1.0 - outputs[i]) * outputs[i];
}

void Tanh(std::span<const double> outputs, std::span<double> errors) {
  for (std::size_t i = 0; i < errors.size(); ++i) errors[i] *= 1.0 - outputs[i] * outputs[i];
}

constexpr std::array<TDerivative, 6> kDerivatives = {{{ActLinear, Linear, false},
                                                      {ActLinearGain, Linear, true},
                                                      {ActSigmoid, Sigmoid, false},
                                                      {ActTanh, Tanh, false},
                                                      {ActSigmoidGain, Sigmoid, true},
                                                      {ActTanhGain, Tanh, true}}};

const TDerivative* Find(TActFunction function) {
  const auto found = std::ranges::find(kDerivatives, function, &TDerivative::function);
  return found != kDerivatives.end() ? &*found : nullptr;
}

void MultiplyByGains(const TBasicLayer& layer, std::span<double> errors) {
  const std::size_t values = errors.size() / layer.NumNeurons();
  for (std::size_t i = 0; i < layer.NumNeurons(); ++i) {
    const double gain = layer.Neuron(i).Gain();
    for (double& error : errors.subspan(i * values, values)) error *= gain;
  }
}

}  // namespace

bool HasDerivative(TActFunction function) {
  return Find(function) != nullptr;
}

void ErrorsToDeltas(const TBasicLayer& layer, std::span<const double> outputs,
                    std::span<double> errors) {
  if (errors.empty()) return;
  const TDerivative* derivative = Find(layer.GetActivation());
  derivative->multiply(outputs, errors);
  if (derivative->has_gain) MultiplyByGains(layer, errors);
}

}  // namespace kiln
