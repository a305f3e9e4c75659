#include "NeuralNets/TBackpropModule.h"

#include <algorithm>
#include <array>

#include "Shared/TAssertion.h"

namespace kiln {

namespace {

constexpr char kModule[] = "NeuralNets/TTrainModule";

// The derivative of each trainable activation function, from the output y, without its gain.
struct TDerivative {
  TActFunction function;
  double (*of_output)(double y);
  bool has_gain;
};

double Linear(double) {
  return 1.0;
}

double Sigmoid(double y) {
  return (1.0 - y) * y;
}

double Tanh(double y) {
  return 1.0 - y * y;
}

constexpr std::array<TDerivative, 6> kDerivatives = {{{ActLinear, Linear, false},
                                                      {ActLinearGain, Linear, true},
                                                      {ActSigmoid, Sigmoid, false},
                                                      {ActTanh, Tanh, false},
                                                      {ActSigmoidGain, Sigmoid, true},
                                                      {ActTanhGain, Tanh, true}}};

const TDerivative* FindDerivative(TActFunction function) {
  const auto found = std::ranges::find(kDerivatives, function, &TDerivative::function);
  return found != kDerivatives.end() ? &*found : nullptr;
}

}  // namespace

bool TBackpropModule::IsCrossEntropyOutput(const TTrainRun& run, std::size_t layer) const {
  return run.cross_entropy && layer == Network().OutputLayer();
}

void TBackpropModule::CheckLayers(const TTrainRun& run) const {
  for (std::size_t layer = Network().NumLayers(); layer-- > 0;) CheckLayer(run, layer);
}

void TBackpropModule::CheckLayer(const TTrainRun& run, std::size_t layer) const {
  const TActFunction function = Network().Layer(layer).GetActivation();
  Assert(function != nullptr, "fn!= NULL", kModule, 395);
  if (IsCrossEntropyOutput(run, layer)) {
    Assert(function == ActSigmoid, "fn == ActSigmoid", kModule, 399);
  }
  if (IsTrained(layer)) {
    Assert(FindDerivative(function) != nullptr, "fn != ActError", kModule, 443);
  }
}

void TBackpropModule::TrainLayer(const TTrainRun& run, std::size_t layer) {
  if (!IsTrained(layer)) return;
  ErrorsToDeltas(run, layer);
  const auto sources = Network().Sources(layer);
  for (std::size_t i = sources.size(); i-- > 0;) {
    const std::size_t from = sources[i];
    if (from >= layer) continue;
    TrainBlock(run, layer, from,
               {Errors(layer), Network().Layer(from).Outputs(), ErrorsBelow(from)});
  }
}

void TBackpropModule::ErrorsToDeltas(const TTrainRun& run, std::size_t layer) {
  if (IsCrossEntropyOutput(run, layer)) return;
  const TBasicLayer& neurons = Network().Layer(layer);
  const TDerivative* derivative = FindDerivative(neurons.GetActivation());
  const std::span<const double> outputs = neurons.Outputs();
  const std::span<double> errors = Errors(layer);
  for (std::size_t i = 0; i < errors.size(); ++i) {
    errors[i] *= derivative->of_output(outputs[i]);
    if (derivative->has_gain) errors[i] *= neurons.Neuron(i).Gain();
  }
}

}  // namespace kiln
