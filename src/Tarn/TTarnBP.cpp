#include "Tarn/TTarnBP.h"

#include <utility>

#include "Tarn/TTarnPass.h"

namespace kiln {

TTarnBP::TTarnBP(std::shared_ptr<TTarn> network) : TBackpropModule(std::move(network)) {}

double TTarnBP::Train(const Data& data, TKQstructure& params, int& epochs,
                      const TEpochObserver& observer) {
  const TTrainCheckpoint checkpoint(State());
  try {
    return TBackpropModule::Train(data, params, epochs, observer);
  } catch (...) {
    checkpoint.Restore(State());
    throw;
  }
}

void TTarnBP::CheckLayers(const TTrainRun& run) const {
  // All layers can be trained, but cross entropy asks for sigmoid outputs, which these are not.
  if (run.cross_entropy) CheckLayer(run, TTarn::kOutputLayer);
}

std::unique_ptr<TTrainPass> TTarnBP::MakePass(const TTrainRun& run) {
  steps_.emplace(Tarn());
  return std::make_unique<TTarnPass>(State(), run, *steps_);
}

void TTarnBP::Update(const TTrainRun& run, double share) {
  steps_->Begin();
  TBackpropModule::Update(run, share);
  steps_->End();
}

}  // namespace kiln
