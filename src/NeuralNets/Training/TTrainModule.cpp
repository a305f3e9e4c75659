#include "NeuralNets/Training/TTrainModule.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include "DataObject/Data.h"
#include "NeuralNets/Training/TLanePass.h"
#include "NeuralNets/Training/TTrainIterators.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Users quote this source, and these lines, for whatever training refuses.
constexpr char kModule[] = "NeuralNets/TTrainModule";

void CheckData(const Data& data, const TBasicNetwork& network) {
  network.CheckFits(data, "TTrainModule::Train");
  if (data.DataRows() == 0) {
    throw TException("the data set has no rows", "Invalid Parameter", "TTrainModule::Train");
  }
}

[[noreturn]] void FailNumber(const std::string& what, int epoch) {
  throw TException(what + " is no finite number after epoch " + std::to_string(epoch),
                   "Invalid Parameter", "TTrainModule::Train");
}

// Moves weights by a rule that keeps numbers of its own for each of them.
template <typename TRule>
class TRuleUpdate : public TIterateObj2 {
 public:
  TRuleUpdate(TRule& rule, const double* gradients) : rule_(rule), gradients_(gradients) {}
  void Patch(const TWeightPatch& patch, double* gradients) override {
    rule_.Move(static_cast<std::size_t>(gradients - gradients_), patch, gradients);
  }

 private:
  TRule& rule_;
  const double* gradients_;  // of all weights
};

}  // namespace

TTrainModule::TTrainModule(std::shared_ptr<TBasicNetwork> network) : state_(std::move(network)) {}

double TTrainModule::Train(const Data& data, TKQstructure& params, int& epochs,
                           const TEpochObserver& observer, const TValidationSet* validation_set) {
  CheckData(data, Network());
  const TTrainRun run(params, data);
  CheckLayers(run);
  std::optional<TValidation> validation;
  if (validation_set) {
    validation.emplace(Network(), *validation_set, run.MakeError(Network().NumOutputs()));
  }
  THistoryOfCall history(history_, epochs);
  const int epochs_before = history_.Epochs();
  const TTrainCheckpoint checkpoint(state_);
  try {
    const double error =
        RunEpochs(data, run, epochs, observer, validation ? &*validation : nullptr);
    if (!checkpoint.IsStillFinite(state_))
      FailNumber("a weight", history_.Epochs() - epochs_before);
    history.End();
    return error;
  } catch (...) {
    checkpoint.Restore(state_);
    throw;
  }
}

double TTrainModule::RunEpochs(const Data& data, const TTrainRun& run, int& epochs,
                               const TEpochObserver& observer, TValidation* validation) {
  const std::unique_ptr<TTrainPass> pass = MakePassOfRun(run);
  StartMethod(run.method);
  const std::unique_ptr<TErrorObj> error = run.MakeError(Network().NumOutputs());
  double last = 0.0;
  for (int epoch = 0; epoch < epochs; ++epoch) {
    error->Reset();
    RunEpoch(data, run, *pass, *error);
    AddPenaltyToError(run.penalty, *error);
    last = error->Value();
    if (!std::isfinite(last)) FailNumber("the error", epoch + 1);
    if (validation) {
      history_.Add(last, validation->Measure(Network()));
    } else {
      history_.Add(last);
    }
    const bool goes_on = !observer || observer(epoch, last);
    if (last < run.threshold || !goes_on || (validation && !validation->HasPatience())) {
      epochs = epoch;
      break;
    }
  }
  if (!validation || !validation->WasMeasured()) return last;
  EndAtLeast(*validation);
  return validation->LeastError();
}

void TTrainModule::EndAtLeast(const TValidation& validation) {
  if (!validation.IsBeyondLeast()) return;
  validation.Restore(Network());
  state_.changes.Clear();
  state_.method = TMethodMemory();
}

double TTrainModule::Epoch(const Data& data, TKQstructure& params) {
  int epochs = 1;
  return Train(data, params, epochs);
}

void TTrainModule::RunEpoch(const Data& data, const TTrainRun& run, TTrainPass& pass,
                            TErrorObj& error) {
  if (pass.Kind() == TTrainPass::TKind::kMovesWeights) {
    return pass.Run(data, 0, run.patterns, error);
  }
  for (int first = 0; first < run.patterns; first += run.batch) {
    const int last = std::min(first + run.batch, run.patterns);
    state_.gradients.Clear();
    pass.Run(data, first, last, error);
    Update(run, last - first, error);
  }
}

void TTrainModule::StartMethod(const TMethodSettings& method) {
  if (state_.method.index() == static_cast<std::size_t>(method.kind)) return;
  state_.changes.Clear();
  state_.method = NewMemory(method, state_.changes.Values().size());
}

void TTrainModule::CheckLayers(const TTrainRun&) const {
  AssertFalse(kModule, 79);
}

std::unique_ptr<TTrainPass> TTrainModule::MakePassOfRun(const TTrainRun& run) {
  if (run.method.kind == TMethodKind::kLevenberg) return MakeLevenbergPass(run);
  std::unique_ptr<TTrainPass> pass = MakePass(state_, run);
  if (!TLanePass::Fits(Network(), run)) return pass;
  return std::make_unique<TLanePass>(state_, run, std::move(pass),
                                     [&](TTrainState& state) { return MakePass(state, run); });
}

std::unique_ptr<TTrainPass> TTrainModule::MakePass(TTrainState&, const TTrainRun&) {
  AssertFalse(kModule, 79);
}

std::unique_ptr<TTrainPass> TTrainModule::MakeLevenbergPass(const TTrainRun&) {
  AssertFalse(kModule, 79);
}

// The one place where gradients become an update.
void TTrainModule::Update(const TTrainRun& run, int rows, const TErrorObj& error) {
  AddPenaltyGradients(run, static_cast<double>(rows) / run.patterns);
  if (auto* const rprop = std::get_if<TRprop>(&state_.method)) {
    rprop->Begin(run.PriceOf(error) + PriceOfPenalty(run.penalty), run.method.rprop);
    MoveWeightsBy(*rprop);
  } else if (auto* const adam = std::get_if<TAdam>(&state_.method)) {
    adam->Begin(rows, run.method.adam);
    MoveWeightsBy(*adam);
  } else {
    MoveWeights(run.rates);
  }
}

// Under the plain gradient, forgetting takes the same from a weight at every update, however many
// rows that is for; the other methods follow the slope of the price for the whole set.
void TTrainModule::AddPenaltyGradients(const TTrainRun& run, double share) {
  const TPenaltyTerm& penalty = run.penalty;
  if (penalty.kind == TPenaltyTerm::TKind::kNone) return;
  const bool is_gradient = run.method.kind == TMethodKind::kGradient;
  TIterateObj2CalcPenaltyTerm quadratic(penalty.quadratic.Times(share));
  TIterateObjLWFCalcPenaltyTerm forgetting(penalty.forgetting.Times(is_gradient ? 1.0 : share));
  const bool is_quadratic = penalty.kind == TPenaltyTerm::TKind::kQuadratic;
  TIterateObj2& term = is_quadratic ? static_cast<TIterateObj2&>(quadratic) : forgetting;
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    TBasicConnections& block = Network().Connections(to, from);
    if (block.IsPenalised()) block.Iterate2(state_.gradients.Block(to, from), term);
  });
}

void TTrainModule::AddPenaltyToError(const TPenaltyTerm& penalty, TErrorObj& error) const {
  if (penalty.kind == TPenaltyTerm::TKind::kNone) return;
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    const TBasicConnections& block = Network().Connections(to, from);
    if (block.IsPenalised()) error.AddPenalty(block.Weights(), penalty.description);
  });
}

void TTrainModule::MoveWeights(const TRates& rates) {
  TIterateObj2Update plain(rates);
  TIterateObj3UpdateMomentum with_momentum(rates);
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    TBasicConnections& block = Network().Connections(to, from);
    const std::span<double> gradients = state_.gradients.Block(to, from);
    if (rates.momentum == 0.0) {
      block.Iterate2(gradients, plain);
    } else {
      block.Iterate3(gradients, state_.changes.Block(to, from), with_momentum);
    }
  });
}

template <typename TRule>
void TTrainModule::MoveWeightsBy(TRule& rule) {
  TRuleUpdate update(rule, state_.gradients.Values().data());
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    Network().Connections(to, from).Iterate2(state_.gradients.Block(to, from), update);
  });
}

double TTrainModule::PriceOfPenalty(const TPenaltyTerm& penalty) const {
  double sum = 0.0;
  if (penalty.kind == TPenaltyTerm::TKind::kNone) return sum;
  state_.ForEachBlock([&](std::size_t to, std::size_t from) {
    const TBasicConnections& block = Network().Connections(to, from);
    if (!block.IsPenalised()) return;
    for (const double weight : block.Weights()) sum += penalty.Price(weight);
  });
  return sum;
}

}  // namespace kiln
