#include "NeuralNets/Training/TTrainModule.h"

#include <algorithm>
#include <utility>

#include "DataObject/Data.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

constexpr char kModule[] = "NeuralNets/TTrainModule";

std::unique_ptr<TBasicNetwork> ClearedCopy(const TBasicNetwork& network) {
  std::unique_ptr<TBasicNetwork> copy = network.Clone();
  copy->ClearWeights();
  return copy;
}

}  // namespace

TTrainModule::TTrainModule(std::shared_ptr<TBasicNetwork> network)
    : network_(std::move(network)),
      changes_(ClearedCopy(*network_)),
      deltas_(ClearedCopy(*network_)) {}

double TTrainModule::Train(const Data& data, TKQstructure& params, int& epochs,
                           const TEpochObserver& observer) {
  TTrainRun run = StartRun(data, params);
  double error = 0.0;
  for (int epoch = 0; epoch < epochs; ++epoch) {
    error = RunEpoch(data, run);
    const bool goes_on = !observer || observer(epoch, error);
    if (error < run.threshold || !goes_on) {
      epochs = epoch;
      return error;
    }
  }
  return error;
}

double TTrainModule::Epoch(const Data& data, TKQstructure& params) {
  TTrainRun run = StartRun(data, params);
  return RunEpoch(data, run);
}

TTrainRun TTrainModule::StartRun(const Data& data, TKQstructure& params) {
  network_->CheckFits(data, "TTrainModule::Train");
  if (data.DataRows() == 0) {
    throw TException("the data set has no rows", "Invalid Parameter", "TTrainModule::Train");
  }
  TTrainRun run(params, data);
  // Blocks that lead back are not trained, but momentum and penalties act on them: that is for
  // the pass over all blocks.
  run.at_once =
      !run.batch && run.penalty.kind != TPenaltyTerm::TKind::kQuadratic && IsFeedForward();
  CheckLayers(run);
  run.pass = MakePass(run);
  return run;
}

double TTrainModule::RunEpoch(const Data& data, TTrainRun& run) {
  run.error->Reset();
  if (run.batch) {
    RunBatch(data, run);
  } else if (run.pass) {
    run.pass->Run(data, run);
  } else {
    RunPatterns(data, run);
  }
  AddPenaltyToError(run);
  return run.error->Value();
}

void TTrainModule::RunBatch(const Data& data, TTrainRun& run) {
  deltas_->ClearWeights();
  if (run.pass) {
    run.pass->Run(data, run);
  } else {
    for (int n = 0; n < data.DataRows(); ++n) TrainPattern(run, data.Row(n));
  }
  AddPenaltyGradient(run, 1.0);
  UpdateWeights(run);
  WeightsChanged();
}

void TTrainModule::RunPatterns(const Data& data, TTrainRun& run) {
  for (int n = 0; n < data.DataRows(); ++n) {
    if (!run.at_once) deltas_->ClearWeights();
    TrainPattern(run, data.Row(n));
    if (!run.at_once) {
      AddPenaltyGradient(run, 1.0 / data.DataRows());
      UpdateWeights(run);
    }
    WeightsChanged();
  }
}

void TTrainModule::TrainPattern(TTrainRun& run, const DataRow& row) {
  network_->RecallPattern(row.Inputs, run.output);
  run.error->Accumulate(row.Outputs, run.output);
  for (std::size_t layer = 0; layer < network_->NumLayers(); ++layer) {
    std::ranges::fill(ErrorsBelow(layer), 0.0);
  }
  std::ranges::transform(run.output, row.Outputs, Errors(network_->OutputLayer()).begin(),
                         std::minus<>());
  for (std::size_t layer = network_->NumLayers(); layer-- > 0;) TrainLayer(run, layer);
}

void TTrainModule::CheckLayers(const TTrainRun&) const {
  AssertFalse(kModule, 79);
}

std::unique_ptr<TTrainPass> TTrainModule::MakePass(const TTrainRun&) {
  return nullptr;
}

void TTrainModule::TrainLayer(const TTrainRun&, std::size_t) {
  AssertFalse(kModule, 79);
}

bool TTrainModule::IsPenalised(std::size_t, std::size_t) const {
  return true;
}

bool TTrainModule::IsFeedForward() const {
  for (std::size_t layer = 0; layer < network_->NumLayers(); ++layer) {
    const auto sources = network_->Sources(layer);
    if (!sources.empty() && sources.back() >= layer) return false;
  }
  return true;
}

std::span<double> TTrainModule::ErrorsBelow(std::size_t layer) {
  return network_->HasLowerSources(layer) ? Errors(layer) : std::span<double>();
}

void TTrainModule::TrainBlock(const TTrainRun& run, std::size_t to, std::size_t from,
                              const TBlockTerms& terms) {
  TBasicConnections& block = network_->Connections(to, from);
  if (run.at_once) {
    const TRates rates = IsPenalised(to, from) ? run.ForgettingRates() : run.rates;
    TIterateObj2Step step(terms, rates);
    block.Iterate2(changes_->Connections(to, from), step);
  } else {
    TIterateObj2ErrorsAndDeltas gradient(terms);
    block.Iterate2(deltas_->Connections(to, from), gradient);
  }
}

template <typename TVisit>
void TTrainModule::ForEachBlock(const TVisit& visit) {
  for (std::size_t from = 0; from < network_->NumLayers(); ++from) {
    for (std::size_t to = 0; to < network_->NumLayers(); ++to) {
      if (network_->Connections(to, from).IsConnected()) visit(to, from);
    }
  }
}

template <typename TVisit>
void TTrainModule::ForEachPenalised(const TTrainRun& run, const TVisit& visit) {
  if (run.penalty.kind == TPenaltyTerm::TKind::kNone) return;
  ForEachBlock([&](std::size_t to, std::size_t from) {
    if (IsPenalised(to, from)) visit(to, from);
  });
}

// `share` is the part of the data set that the gradient stands for.
void TTrainModule::AddPenaltyGradient(const TTrainRun& run, double share) {
  const TPenaltyTerm& penalty = run.penalty;
  TIterateObj2CalcPenaltyTerm quadratic(share * penalty.epsilon1, share * penalty.epsilon2,
                                        penalty.beta);
  TIterateObjLWFCalcPenaltyTerm forgetting(penalty.forgetting);
  const bool is_quadratic = penalty.kind == TPenaltyTerm::TKind::kQuadratic;
  TIterateObj2& term = is_quadratic ? static_cast<TIterateObj2&>(quadratic) : forgetting;
  ForEachPenalised(run, [&](std::size_t to, std::size_t from) {
    network_->Connections(to, from).Iterate2(deltas_->Connections(to, from), term);
  });
}

void TTrainModule::AddPenaltyToError(TTrainRun& run) {
  ForEachPenalised(run, [&](std::size_t to, std::size_t from) {
    run.error->AddPenalty(network_->Connections(to, from).Weights(), run.penalty.description);
  });
}

void TTrainModule::UpdateWeights(const TTrainRun& run) {
  TIterateObj2Update plain(run.rates);
  TIterateObj3UpdateMomentum with_momentum(run.rates);
  ForEachBlock([&](std::size_t to, std::size_t from) {
    TBasicConnections& block = network_->Connections(to, from);
    TBasicConnections& gradients = deltas_->Connections(to, from);
    if (run.rates.momentum == 0.0) {
      block.Iterate2(gradients, plain);
    } else {
      block.Iterate3(gradients, changes_->Connections(to, from), with_momentum);
    }
  });
}

}  // namespace kiln
