#include "NeuralNets/Training/TTrainModule.h"

#include <algorithm>
#include <utility>

#include "DataObject/Data.h"
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

}  // namespace

TTrainModule::TTrainModule(std::shared_ptr<TBasicNetwork> network) : state_(std::move(network)) {}

double TTrainModule::Train(const Data& data, TKQstructure& params, int& epochs,
                           const TEpochObserver& observer) {
  CheckData(data, Network());
  const TTrainRun run(params, data);
  CheckLayers(run);
  const std::unique_ptr<TTrainPass> pass = MakePass(run);
  const std::unique_ptr<TErrorObj> error = run.MakeError(Network().NumOutputs());
  double last = 0.0;
  for (int epoch = 0; epoch < epochs; ++epoch) {
    error->Reset();
    RunEpoch(data, run, *pass, *error);
    AddPenaltyToError(run.penalty, *error);
    last = error->Value();
    const bool goes_on = !observer || observer(epoch, last);
    if (last < run.threshold || !goes_on) {
      epochs = epoch;
      break;
    }
  }
  return last;
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
    Update(run, static_cast<double>(last - first) / run.patterns);
  }
}

void TTrainModule::CheckLayers(const TTrainRun&) const {
  AssertFalse(kModule, 79);
}

std::unique_ptr<TTrainPass> TTrainModule::MakePass(const TTrainRun&) {
  AssertFalse(kModule, 79);
}

// The one place where gradients become an update.
void TTrainModule::Update(const TTrainRun& run, double share) {
  AddPenaltyGradients(run.penalty, share);
  MoveWeights(run.rates);
}

void TTrainModule::AddPenaltyGradients(const TPenaltyTerm& penalty, double share) {
  if (penalty.kind == TPenaltyTerm::TKind::kNone) return;
  TIterateObj2CalcPenaltyTerm quadratic(share * penalty.epsilon1, share * penalty.epsilon2,
                                        penalty.beta);
  TIterateObjLWFCalcPenaltyTerm forgetting(penalty.forgetting);
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

}  // namespace kiln
