#include "NeuralNets/Training/TTrainRun.h"

#include <algorithm>
#include <cmath>

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

bool IsWholeBatch(const TKQstructure& params) {
  const TKQstructure* batch = params.Deref("BATCH");
  return batch != nullptr && EqualNoCase(batch->Name(), "TRUE");
}

// The rows of an update: all, a number of them, or, for any other word, 1.
int BatchOf(const TKQstructure& params, TMethodKind method, int patterns) {
  if (method == TMethodKind::kRprop || method == TMethodKind::kLevenberg) return patterns;
  const TKQstructure* batch = params.Deref("BATCH");
  if (batch == nullptr) return 1;
  if (IsWholeBatch(params)) return patterns;
  const bool is_number = batch->Name().find_first_not_of("0123456789") == std::string::npos;
  return is_number ? std::clamp(str2longThrow(batch->Name()), 1, patterns) : 1;
}

double PenaltyRate(const TKQstructure& params, TMethodKind method) {
  return method == TMethodKind::kGradient ? NumberOr(params, "LEARNINGRATE", 1.0) : 1.0;
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
      quadratic{learning_rate * NumberOr(message, "EPSILON1", 0.0),
                learning_rate * NumberOr(message, "EPSILON2", 0.0),
                NumberOr(message, "BETA", 1.0)} {
  const double rate = NumberOr(message, "FORGETTINGRATE", 0.0);
  if (kind == TKind::kForgetting && learning_rate != 0.0) {
    forgetting.factor = rate * (rate / learning_rate);
  }
}

double TPenaltyTerm::Price(double weight) const {
  return kind == TKind::kForgetting ? forgetting.Price(weight) : quadratic.Price(weight);
}

double TPenaltyTerm::Slope(double weight) const {
  return kind == TKind::kForgetting ? forgetting.Slope(weight) : quadratic.Slope(weight);
}

double TPenaltyTerm::Residual(double weight) const {
  const auto& [epsilon1, epsilon2, beta] = quadratic;
  return weight * std::sqrt(2.0 * (epsilon1 * beta / (beta * weight * weight + 1.0) + epsilon2));
}

double TPenaltyTerm::ResidualSlope(double weight) const {
  const auto& [epsilon1, epsilon2, beta] = quadratic;
  const double root = beta * weight * weight + 1.0;
  const double factor = std::sqrt(2.0 * (epsilon1 * beta / root + epsilon2));
  return factor > 0.0 ? 2.0 * (epsilon1 * beta / (root * root) + epsilon2) / factor : 0.0;
}

TTrainRun::TTrainRun(TKQstructure& params, const Data& data)
    : rates{.rate = NumberOr(params, "LEARNINGRATE", 0.0),
            .momentum = NumberOr(params, "MOMENTUM", 0.0)},
      threshold(NumberOr(params, "THRESHOLD", 0.0)),
      cross_entropy(IsCrossEntropy(params)),
      patterns(data.DataRows()),
      method(params),
      batch(BatchOf(params, method.kind, patterns)),
      penalty(PenaltyOf(params), PenaltyRate(params, method.kind)),
      at_once(method.kind == TMethodKind::kGradient && batch == 1 && !IsWholeBatch(params) &&
              penalty.kind != TPenaltyTerm::TKind::kQuadratic) {}

double TTrainRun::PriceOf(const TErrorObj& error_of_set) const {
  return cross_entropy ? error_of_set.Sum() : 0.5 * error_of_set.Sum();
}

TRates TTrainRun::ForgettingRates() const {
  TRates with_pull = rates;
  with_pull.pull = rates.rate * penalty.forgetting.factor;
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
