#include "NeuralNets/Training/TSmallPass.h"

#include <algorithm>

#include "NeuralNets/PlainNetworks.h"

namespace kiln {

namespace {

bool LayerFits(const TBasicNetwork& network, std::size_t to) {
  for (const std::size_t from : network.Sources(to)) {
    const TBasicConnections& block = network.Connections(to, from);
    if (!block.IsComplete() || !block.IsAllTrainable()) return false;
  }
  const TActFunction function = network.Layer(to).GetActivation();
  return !network.HasLowerSources(to) || function == ActLinear || function == ActSigmoid;
}

}  // namespace

bool TSmallPass::Fits(const TBasicNetwork& network, const TTrainRun& run) {
  if (!run.at_once || !IsPlain(network)) return false;
  std::size_t weights = 0;
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    if (!LayerFits(network, layer)) return false;
    for (const std::size_t from : network.Sources(layer)) {
      weights += network.Connections(layer, from).Weights().size();
    }
  }
  return weights <= kMaxWeights;
}

TSmallPass::TSmallPass(TTrainState& state, const TTrainRun& run)
    : TTrainPass(TKind::kMovesWeights), ends_(state), rates_(run.ForgettingRates()) {
  ComputeConstantLayers(*state.network);
  for (std::size_t layer = 0; layer < state.network->NumLayers(); ++layer) {
    if (state.network->HasLowerSources(layer)) AddStage(state, run, layer);
  }
  ForEachCopy([](double& copy, const double& original) { copy = original; });
}

void TSmallPass::AddStage(TTrainState& state, const TTrainRun& run, std::size_t to) {
  const TKernels& kernels = Kernels();
  TBasicNetwork& network = *state.network;
  TBasicLayer& layer = network.Layer(to);
  const std::size_t width = TSmallLayer::WidthOf(layer.NumNeurons());
  double* d = state.Errors(to).data();
  const bool is_sigmoid = layer.GetActivation() == ActSigmoid;
  const bool errors_are_deltas = run.ErrorsAreDeltas(network, to);
  TStage& stage = stages_.emplace_back();
  for (const std::size_t from : network.Sources(to)) {
    const std::size_t columns = network.Layer(from).NumNeurons();
    if (columns * width == 0) continue;  // no weights, no memory for them
    const std::size_t lines = TCacheLine::LinesOf(columns * width);
    stage.blocks.push_back({network.Connections(to, from).Weights(), state.changes.Block(to, from),
                            std::vector<TCacheLine>(2 * lines)});
    TCopy& block = stage.blocks.back();
    stage.sums.push_back({.columns = columns,
                          .w = block.copy[0].values,
                          .p = block.copy[lines].values,
                          .x = network.Layer(from).Outputs().data(),
                          .e = state.ErrorsBelow(from).data()});
  }
  stage.layer = {.sums = stage.sums.data(),
                 .count = stage.sums.size(),
                 .width = width,
                 .y = layer.Outputs().data(),
                 .d = d};
  stage.recall = is_sigmoid ? kernels.recall_sigmoid : kernels.recall_linear;
  stage.step = is_sigmoid && !errors_are_deltas ? kernels.step_sigmoid : kernels.step_linear;
  stage.errors = {d, width};
}

template <typename TVisit>
void TSmallPass::ForEachCopy(const TVisit& visit) {
  for (TStage& stage : stages_) {
    for (std::size_t k = 0; k < stage.sums.size(); ++k) {
      VisitBlock(stage.blocks[k], stage.sums[k], stage.layer.width, visit);
    }
  }
}

template <typename TVisit>
void TSmallPass::VisitBlock(const TCopy& block, const TSmallSums& sums, std::size_t width,
                            const TVisit& visit) {
  std::size_t place = 0;
  for (std::size_t row = 0; place < block.weights.size(); ++row) {
    for (std::size_t column = 0; column < sums.columns; ++column, ++place) {
      const std::size_t at = column * width + row;
      visit(sums.w[at], block.weights[place]);
      visit(sums.p[at], block.changes[place]);
    }
  }
}

void TSmallPass::Run(const Data& data, int first, int last, TErrorObj& error) {
  for (int n = first; n < last; ++n) RunPattern(data.Row(n), error);
  ForEachCopy([](const double& copy, double& original) { original = copy; });
}

void TSmallPass::RunPattern(const DataRow& row, TErrorObj& error) {
  ends_.SetInputs(row);
  for (const TStage& stage : stages_) {
    stage.recall(stage.layer);
    std::ranges::fill(stage.errors, 0.0);
  }
  ends_.SetErrors(row);
  for (std::size_t i = stages_.size(); i-- > 0;) stages_[i].step(stages_[i].layer, rates_);
  ends_.AddError(row, error);  // last, since nothing waits for it
}

}  // namespace kiln
