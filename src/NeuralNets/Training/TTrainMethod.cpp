#include "NeuralNets/Training/TTrainMethod.h"

#include <array>
#include <string>

#include "KQmessage/TKQstructure.h"
#include "NeuralNets/Parameters.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

// By the number of the method.
constexpr std::array<std::string_view, 4> kNames = {"gradient", "rprop", "adam", "levenberg"};

[[noreturn]] void Refuse(const std::string& message) {
  throw TException(message, "Invalid Parameter", "TTrainModule::Train");
}

TMethodKind KindOf(const TKQstructure& params) {
  const TKQstructure* name = params.Deref("METHOD");
  if (name == nullptr) return TMethodKind::kGradient;
  const std::optional<TMethodKind> kind = FindMethod(name->Name());
  if (!kind) Refuse("unknown method " + name->Name() + ": " + kMethodWords);
  return *kind;
}

double Positive(const TKQstructure& params, const char* keyword, double fallback) {
  const double value = NumberOr(params, keyword, fallback);
  if (!(value > 0.0)) Refuse(std::string(keyword) + " must be above 0");
  return value;
}

// A share of what is remembered: with 1 nothing new would ever count.
double Share(const TKQstructure& params, const char* keyword, double fallback) {
  const double value = NumberOr(params, keyword, fallback);
  if (!(value >= 0.0 && value < 1.0)) {
    Refuse(std::string(keyword) + " must be at least 0 and below 1");
  }
  return value;
}

}  // namespace

std::optional<TMethodKind> FindMethod(std::string_view name) {
  const std::string_view* const found = FindNoCase(kNames, name);
  if (found == nullptr) return std::nullopt;
  return static_cast<TMethodKind>(found - kNames.data());
}

TMethodSettings::TMethodSettings(const TKQstructure& params) : kind(KindOf(params)) {
  if (kind == TMethodKind::kRprop) {
    rprop = {.first_step = Positive(params, "FirstStep", rprop.first_step),
             .largest_step = Positive(params, "LargestStep", rprop.largest_step)};
  }
  if (kind == TMethodKind::kAdam) {
    adam = {.rate = Positive(params, "LearningRate", adam.rate),
            .beta1 = Share(params, "Beta1", adam.beta1),
            .beta2 = Share(params, "Beta2", adam.beta2),
            .epsilon = Positive(params, "Epsilon", adam.epsilon)};
  }
}

TMethodMemory NewMemory(const TMethodSettings& settings, std::size_t weights) {
  switch (settings.kind) {
    case TMethodKind::kGradient:
      break;
    case TMethodKind::kRprop:
      return TRprop(weights, settings.rprop);
    case TMethodKind::kAdam:
      return TAdam(weights);
    case TMethodKind::kLevenberg:
      return TLevenbergMemory();
  }
  return std::monostate();
}

}  // namespace kiln
