#include "Tarn/TTarnBP.h"

#include <algorithm>
#include <utility>

#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln {

TTarnBP::TTarnBP(std::shared_ptr<TTarn> network)
    : TBackpropModule(std::move(network)),
      tarn_(static_cast<TTarn&>(Network())),
      ones_(tarn_.NumInputs(), 1.0),
      centre_gradients_(tarn_.Layer(TTarn::kConditionLayer).NumNeurons()),
      centres_before_(centre_gradients_.size()) {}

double TTarnBP::Train(const Data& data, TKQstructure& params, int& epochs,
                      const TEpochObserver& observer) {
  const std::vector<double> weights = tarn_.GetWeights(FMaskAll);
  const std::vector<double> changes = Changes().GetWeights(FMaskAll);
  try {
    return TBackpropModule::Train(data, params, epochs, observer);
  } catch (...) {
    tarn_.SetWeights(weights, FMaskAll);
    Changes().SetWeights(changes, FMaskAll);
    throw;
  }
}

void TTarnBP::CheckLayers(const TTrainRun& run) const {
  // All layers can be trained, but cross entropy asks for sigmoid outputs, which these are not.
  if (run.cross_entropy) CheckLayer(run, TTarn::kOutputLayer);
}

void TTarnBP::TrainLayer(const TTrainRun& run, std::size_t layer) {
  if (layer == TTarn::kOutputLayer) return TrainOutputLayer(run);
  if (layer == TTarn::kConditionLayer) return TrainConditionLayer(run);
  TBackpropModule::TrainLayer(run, layer);
}

// To the block an output is a weighted sum of a / S, whose delta is e: it passes e w / S back. What
// is missing is - e o / S.
void TTarnBP::TrainOutputLayer(const TTrainRun& run) {
  const auto& layer = static_cast<const TTarnOutputLayer&>(tarn_.Layer(TTarn::kOutputLayer));
  const std::span<double> deltas = Errors(TTarn::kOutputLayer);
  const std::span<double> action_errors = Errors(TTarn::kActionLayer);
  for (std::size_t t = 0; t < deltas.size(); ++t) {
    const double sum = layer.Sums()[t];
    deltas[t] = sum != 0.0 ? deltas[t] / sum : 0.0;
    for (double& error : action_errors.subspan(layer.Groups().First(t), layer.Groups().Count(t))) {
      error -= deltas[t] * layer.Outputs()[t];
    }
  }
  TrainBlock(run, TTarn::kOutputLayer, TTarn::kActionLayer,
             {deltas, tarn_.Layer(TTarn::kActionLayer).Outputs(), action_errors});
}

// To the block a centre is the weight of a constant input 1.
void TTarnBP::TrainConditionLayer(const TTrainRun& run) {
  const auto& layer = static_cast<const TConditionLayer&>(tarn_.Layer(TTarn::kConditionLayer));
  std::ranges::fill(centre_gradients_, 0.0);
  layer.AddGradients(Errors(TTarn::kConditionLayer), centre_gradients_);
  const TBasicConnections& centres = tarn_.Connections(TTarn::kConditionLayer, TTarn::kInputLayer);
  std::ranges::copy(centres.Weights(), centres_before_.begin());
  TrainBlock(run, TTarn::kConditionLayer, TTarn::kInputLayer, {centre_gradients_, ones_, {}});
}

void TTarnBP::WeightsChanged() {
  tarn_.LimitInputSteps(centres_before_);
  tarn_.PutCentresInOrder();
}

bool TTarnBP::IsPenalised(std::size_t to, std::size_t) const {
  return to == TTarn::kRuleLayer || to == TTarn::kActionLayer;
}

}  // namespace kiln
