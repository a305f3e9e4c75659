#include "Tarn/TTarnBlockPass.h"

#include <algorithm>

#include "NeuralNets/Kernels/Kernels.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarn.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln {

TTarnBlockPass::TTarnBlockPass(TTrainState& state, const TTrainRun& run)
    : TBlockPass(state, run),
      tarn_(static_cast<const TTarn&>(*state.network)),
      deltas_(Outputs().Patterns()),
      pulls_(Outputs().Patterns()) {}

void TTarnBlockPass::TrainLayer(std::size_t layer) {
  if (layer == TTarn::kOutputLayer) {
    for (std::size_t t = 0; t < tarn_.NumOutputs(); ++t) TrainOutput(t);
  } else if (layer == TTarn::kConditionLayer) {
    TrainConditionLayer();
  } else {
    TBlockPass::TrainLayer(layer);
  }
}

// With delta = e / S, or 0 where S is 0: dE/dw = delta a and dE/da = delta (w - o).
void TTarnBlockPass::TrainOutput(std::size_t output) {
  const auto& layer = static_cast<const TTarnOutputLayer&>(tarn_.Layer(TTarn::kOutputLayer));
  const std::size_t first = layer.Groups().First(output);
  const std::size_t terms = layer.Groups().Count(output);
  const std::size_t stride = Outputs().Patterns();
  const double* values = &Outputs().Outputs(TTarn::kOutputLayer)[output * stride];
  const double* errors = &Errors(TTarn::kOutputLayer)[output * stride];
  std::ranges::fill(deltas_, 0.0);
  std::ranges::fill(pulls_, 0.0);
  for (std::size_t p = 0; p < Outputs().Count(); ++p) {
    const double sum = layer.BlockSums()[output * stride + p];
    deltas_[p] = sum != 0.0 ? errors[p] / sum : 0.0;
    pulls_[p] = -deltas_[p] * values[p];
  }
  const TBasicConnections& centres = tarn_.Connections(TTarn::kOutputLayer, TTarn::kActionLayer);
  double* action_errors = &Errors(TTarn::kActionLayer)[first * stride];
  const auto add_product = [&](const TMatrixView& factors, const std::vector<double>& row) {
    Kernels().multiply(terms, 1, Outputs().Width(), factors, row.data(), stride, action_errors,
                       stride);
  };
  const double one = 1.0;
  add_product({&one, 0, 0}, pulls_);
  add_product({&centres.Weights()[first], 1, 0}, deltas_);
  const double* actions = &Outputs().Outputs(TTarn::kActionLayer)[first * stride];
  Kernels().accumulate(actions, nullptr, terms, stride, deltas_.data(),
                       &State().gradients.Block(TTarn::kOutputLayer, TTarn::kActionLayer)[first]);
}

void TTarnBlockPass::TrainConditionLayer() {
  const auto& layer = static_cast<const TConditionLayer&>(tarn_.Layer(TTarn::kConditionLayer));
  layer.AddBlockGradients(Outputs().Outputs(TTarn::kInputLayer), Errors(TTarn::kConditionLayer),
                          Outputs().Shape(),
                          State().gradients.Block(TTarn::kConditionLayer, TTarn::kInputLayer));
}

}  // namespace kiln
