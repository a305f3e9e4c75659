#include "Tarn/TTarnBP.h"

#include <utility>

#include "Tarn/TTarnBlockPass.h"
#include "Tarn/TTarnLevenberg.h"
#include "Tarn/TTarnPass.h"

namespace kiln {

TTarnBP::TTarnBP(std::shared_ptr<TTarn> network) : TBackpropModule(std::move(network)) {}

void TTarnBP::CheckLayers(const TTrainRun& run) const {
  // All layers can be trained, but cross entropy asks for sigmoid outputs, which these are not.
  if (run.cross_entropy) CheckLayer(run, TTarn::kOutputLayer);
}

std::unique_ptr<TTrainPass> TTarnBP::MakePass(TTrainState& state, const TTrainRun& run) {
  // A worker's pass makes no steps.
  if (&state == &State()) steps_.emplace(Tarn());
  if (TBlockPass::Fits(Tarn(), run)) return std::make_unique<TTarnBlockPass>(state, run);
  return std::make_unique<TTarnPass>(state, run, *steps_);
}

std::unique_ptr<TTrainPass> TTarnBP::MakeLevenbergPass(const TTrainRun& run) {
  steps_.emplace(Tarn());
  auto derivatives = std::make_unique<TTarnPass>(State(), run, *steps_);
  return std::make_unique<TTarnLevenberg>(State(), run, std::move(derivatives));
}

void TTarnBP::Update(const TTrainRun& run, int rows, const TErrorObj& error) {
  steps_->Begin();
  steps_->ScaleGradients(State().gradients.Block(TTarn::kConditionLayer, TTarn::kInputLayer));
  TBackpropModule::Update(run, rows, error);
  steps_->End();
}

}  // namespace kiln
