#include "NeuralNets/Training/TTrainRun.h"

#include "DataObject/Data.h"
#include "NeuralNets/Parameters.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

// Users quote this source, and these lines, for whatever training refuses.
constexpr char kModule[] = "NeuralNets/TTrainModule";

TPenaltyTerm::TKind PenaltyKind(std::string_view name) {
  if (EqualNoCase(name, "NONE")) return TPenaltyTerm::TKind::kNone;
  if (EqualNoCase(name, "QUADPENALTY")) return TPenaltyTerm::TKind::kQuadratic;
  if (EqualNoCase(name, "LWF")) return TPenaltyTerm::TKind::kForgetting;
  AssertFalse(kModule, 355);
}

const TKQstructure& PenaltyOf(TKQstructure& params) {
  if (params.Deref("WEIGHTPENALTY") == nullptr) {
    params.SetValue("WEIGHTPENALTY", std::make_unique<TKQstructure>("NONE"));
  }
  return params.DerefAssert("WEIGHTPENALTY");
}

bool IsBatch(const TKQstructure& params) {
  const TKQstructure* batch = params.Deref("BATCH");
  return batch != nullptr && EqualNoCase(batch->Name(), "TRUE");
}

bool IsCrossEntropy(const TKQstructure& params) {
  const TKQstructure* function = params.Deref("ERRORFUNCTION");
  if (function == nullptr || EqualNoCase(function->Name(), "MEANSQUAREDERROR")) return false;
  if (!EqualNoCase(function->Name(), "CROSSENTROPY")) AssertFalse(kModule, 108);
  return true;
}

}  // namespace

TPenaltyTerm::TPenaltyTerm(const TKQstructure& message, double learning_rate)
    : description(&message),
      kind(PenaltyKind(message.Name())),
      epsilon1(learning_rate * NumberOr(message, "EPSILON1", 0.0)),
      epsilon2(learning_rate * NumberOr(message, "EPSILON2", 0.0)),
      beta(NumberOr(message, "BETA", 1.0)),
      forgetting(0.0) {
  const double rate = NumberOr(message, "FORGETTINGRATE", 0.0);
  if (kind == TKind::kForgetting && learning_rate != 0.0) {
    forgetting = rate * (rate / learning_rate);
  }
}

TTrainRun::TTrainRun(TKQstructure& params, const Data& data)
    : rates{.rate = NumberOr(params, "LEARNINGRATE", 0.0),
            .momentum = NumberOr(params, "MOMENTUM", 0.0)},
      threshold(NumberOr(params, "THRESHOLD", 0.0)),
      cross_entropy(IsCrossEntropy(params)),
      patterns(data.DataRows()),
      batch(IsBatch(params) ? patterns : 1),
      penalty(PenaltyOf(params), NumberOr(params, "LEARNINGRATE", 1.0)),
      at_once(!IsBatch(params) && penalty.kind != TPenaltyTerm::TKind::kQuadratic) {}

TRates TTrainRun::ForgettingRates() const {
  TRates with_pull = rates;
  with_pull.pull = rates.rate * penalty.forgetting;
  return with_pull;
}

bool TTrainRun::ErrorsAreDeltas(const TBasicNetwork& network, std::size_t layer) const {
  return cross_entropy && layer == network.OutputLayer();
}

std::unique_ptr<TErrorObj> TTrainRun::MakeError(std::size_t outputs) const {
  if (cross_entropy) return std::make_unique<TErrorCrossEntropyObj>(outputs);
  return std::make_unique<TErrorRMSObj>(outputs);
}

}  // namespace kiln
