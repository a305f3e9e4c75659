#include "Tarn/TTarnPass.h"

#include <algorithm>

#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarn.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln {

TTarnPass::TTarnPass(TTrainState& state, const TTrainRun& run, TCentreSteps& steps)
    : TLayerwisePass(state, run),
      tarn_(static_cast<const TTarn&>(*state.network)),
      steps_(steps),
      ones_(tarn_.NumInputs(), 1.0),
      centre_gradients_(tarn_.Layer(TTarn::kConditionLayer).NumNeurons()) {}

void TTarnPass::TrainPattern(const DataRow& row, TErrorObj& error) {
  if (Kind() == TKind::kAddsGradients) return TLayerwisePass::TrainPattern(row, error);
  steps_.Begin();
  TLayerwisePass::TrainPattern(row, error);
  steps_.End();
}

void TTarnPass::TrainLayer(std::size_t layer) {
  if (layer == TTarn::kOutputLayer) return TrainOutputLayer();
  if (layer == TTarn::kConditionLayer) return TrainConditionLayer();
  TLayerwisePass::TrainLayer(layer);
}

// TrainBlock takes an output for the weighted sum of a / S, whose delta is e, and passes e w / S
// back. Added here is what that leaves out: - e o / S.
void TTarnPass::TrainOutputLayer() {
  const auto& layer = static_cast<const TTarnOutputLayer&>(tarn_.Layer(TTarn::kOutputLayer));
  const std::span<double> deltas = State().Errors(TTarn::kOutputLayer);
  const std::span<double> action_errors = State().Errors(TTarn::kActionLayer);
  for (std::size_t t = 0; t < deltas.size(); ++t) {
    const double sum = layer.Sums()[t];
    deltas[t] = sum != 0.0 ? deltas[t] / sum : 0.0;
    for (double& error : action_errors.subspan(layer.Groups().First(t), layer.Groups().Count(t))) {
      error -= deltas[t] * layer.Outputs()[t];
    }
  }
  TrainBlock(TTarn::kOutputLayer, TTarn::kActionLayer,
             {deltas, tarn_.Layer(TTarn::kActionLayer).Outputs(), action_errors});
}

// TrainBlock takes a centre for the weight of a constant input 1.
void TTarnPass::TrainConditionLayer() {
  const auto& layer = static_cast<const TConditionLayer&>(tarn_.Layer(TTarn::kConditionLayer));
  std::ranges::fill(centre_gradients_, 0.0);
  layer.AddGradients(State().Errors(TTarn::kConditionLayer), centre_gradients_);
  if (Kind() == TKind::kMovesWeights) steps_.ScaleGradients(centre_gradients_);
  TrainBlock(TTarn::kConditionLayer, TTarn::kInputLayer, {centre_gradients_, ones_, {}});
}

}  // namespace kiln
