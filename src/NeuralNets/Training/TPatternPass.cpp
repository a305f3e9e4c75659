#include "NeuralNets/Training/TPatternPass.h"

#include <algorithm>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/Training/ActDerivatives.h"

namespace kiln {

namespace {

// Hands the patches of two blocks on.
template <typename TVisit>
class TVisitPatches : public TIterateObj2 {
 public:
  explicit TVisitPatches(const TVisit& visit) : visit_(visit) {}
  void Patch(const TWeightPatch& patch, double* second) override { visit_(patch, second); }

 private:
  const TVisit& visit_;
};

}  // namespace

bool TPatternPass::Fits(const TBasicNetwork& network, const TTrainRun& run) {
  return run.at_once && IsPlain(network);
}

TPatternPass::TPatternPass(TTrainState& state, const TTrainRun& run)
    : TTrainPass(TKind::kMovesWeights), ends_(state), rates_(run.ForgettingRates()) {
  ComputeConstantLayers(*state.network);
  for (std::size_t layer = 0; layer < state.network->NumLayers(); ++layer) {
    if (state.network->HasLowerSources(layer)) AddStage(state, run, layer);
  }
}

void TPatternPass::AddStage(TTrainState& state, const TTrainRun& run, std::size_t to) {
  TBasicNetwork& network = *state.network;
  TBasicLayer& layer = network.Layer(to);
  const bool errors_are_deltas = run.ErrorsAreDeltas(network, to);
  stages_.push_back({layer, state.Errors(to), errors_are_deltas, {}, {}});
  TStage& stage = stages_.back();
  for (const std::size_t from : network.Sources(to)) {
    const double* x = network.Layer(from).Outputs().data();
    double* e = state.ErrorsBelow(from).data();
    const auto add = [&](const TWeightPatch& patch, double* last_changes) {
      if (from == network.InputLayer() && TDelayedBlock::Fits(patch, rates_, run.patterns)) {
        stage.delayed.emplace_back(patch, last_changes, rates_);
        return;
      }
      stage.sums.push_back({patch, last_changes, x + patch.from,
                            layer.NetInputs().data() + patch.to, stage.errors.data() + patch.to,
                            e != nullptr ? e + patch.from : nullptr});
    };
    TVisitPatches visit(add);
    network.Connections(to, from).Iterate2(state.changes.Block(to, from), visit);
  }
}

std::size_t TPatternPass::NumDelayed() const {
  std::size_t sum = 0;
  for (const TStage& stage : stages_) sum += stage.delayed.size();
  return sum;
}

void TPatternPass::Run(const Data& data, int first, int last, TErrorObj& error) {
  constexpr int kPatterns = TDelayedBlock::kPatterns;
  for (int begin = first; begin < last; begin += kPatterns) {
    const int end = std::min(begin + kPatterns, last);
    ForEachDelayed([&](TDelayedBlock& block) { block.Begin(data, begin, end); });
    for (int n = begin; n < end; ++n) RunPattern(data.Row(n), error);
    ForEachDelayed([](TDelayedBlock& block) { block.End(); });
  }
}

template <typename TVisit>
void TPatternPass::ForEachDelayed(const TVisit& visit) {
  for (TStage& stage : stages_) std::ranges::for_each(stage.delayed, visit);
}

void TPatternPass::RunPattern(const DataRow& row, TErrorObj& error) {
  ends_.SetInputs(row);
  for (const TStage& stage : stages_) Recall(stage);
  ends_.SetErrors(row);
  for (std::size_t i = stages_.size(); i-- > 0;) Step(stages_[i]);
  ends_.AddError(row, error);
}

void TPatternPass::Recall(const TStage& stage) {
  std::ranges::fill(stage.errors, 0.0);
  const std::span<double> net_inputs = stage.layer.NetInputs();
  std::ranges::fill(net_inputs, 0.0);
  for (const TDelayedBlock& block : stage.delayed) block.Accumulate(net_inputs);
  for (const TSums& sums : stage.sums) {
    const TWeightPatch& patch = sums.patch;
    Kernels().accumulate(patch.weights, patch.masks, patch.rows, patch.columns, sums.x, sums.y);
  }
  stage.layer.Activate();
}

void TPatternPass::Step(TStage& stage) {
  if (!stage.errors_are_deltas) {
    ErrorsToDeltas(stage.layer, stage.layer.Outputs(), stage.errors);
  }
  for (std::size_t k = stage.sums.size(); k-- > 0;) {
    const TSums& sums = stage.sums[k];
    const TWeightPatch& patch = sums.patch;
    Kernels().step(patch.weights, patch.masks, patch.rows, patch.columns, sums.d, sums.x, sums.e,
                   sums.changes, rates_);
  }
  for (TDelayedBlock& block : stage.delayed) block.Step(stage.errors);
}

}  // namespace kiln
