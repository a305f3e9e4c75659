#include "NeuralNets/Training/TLayerwisePass.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/Training/ActDerivatives.h"

namespace kiln {

TLayerwisePass::TLayerwisePass(TTrainState& state, const TTrainRun& run)
    : TTrainPass(run.at_once && IsFeedForward(*state.network) ? TKind::kMovesWeights
                                                              : TKind::kAddsGradients),
      state_(state),
      run_(run),
      ends_(state),
      output_(state.network->NumOutputs()) {}

void TLayerwisePass::Run(const Data& data, int first, int last, TErrorObj& error) {
  for (int n = first; n < last; ++n) TrainPattern(data.Row(n), error);
}

void TLayerwisePass::TrainPattern(const DataRow& row, TErrorObj& error) {
  Recall(row);
  ends_.AddError(row, error);
  ClearErrors();
  ends_.SetErrors(row);
  GoBack();
}

std::span<const double> TLayerwisePass::Recall(const DataRow& row) {
  state_.network->RecallPattern(row.Inputs, output_);
  return output_;
}

void TLayerwisePass::AddDerivatives(std::size_t output) {
  ClearErrors();
  const std::span<double> errors = state_.Errors(state_.network->OutputLayer());
  std::ranges::fill(errors, 0.0);
  errors[output] = 1.0;
  GoBack();
}

void TLayerwisePass::ClearErrors() {
  for (std::size_t layer = 0; layer < state_.network->NumLayers(); ++layer) {
    std::ranges::fill(state_.ErrorsBelow(layer), 0.0);
  }
}

void TLayerwisePass::GoBack() {
  for (std::size_t layer = state_.network->NumLayers(); layer-- > 0;) TrainLayer(layer);
}

void TLayerwisePass::TrainLayer(std::size_t layer) {
  const TBasicNetwork& network = *state_.network;
  if (!network.HasLowerSources(layer)) return;
  const TBasicLayer& neurons = network.Layer(layer);
  if (!run_.ErrorsAreDeltas(network, layer)) {
    ErrorsToDeltas(neurons, neurons.Outputs(), state_.Errors(layer));
  }
  const auto sources = network.Sources(layer);
  for (std::size_t i = sources.size(); i-- > 0;) {
    const std::size_t from = sources[i];
    if (from >= layer) continue;
    TrainBlock(layer, from,
               {state_.Errors(layer), network.Layer(from).Outputs(), state_.ErrorsBelow(from)});
  }
}

void TLayerwisePass::TrainBlock(std::size_t to, std::size_t from, const TBlockTerms& terms) {
  TBasicConnections& block = state_.network->Connections(to, from);
  if (Kind() == TKind::kMovesWeights) {
    const TRates rates = block.IsPenalised() ? run_.ForgettingRates() : run_.rates;
    TIterateObj2Step step(terms, rates);
    block.Iterate2(state_.changes.Block(to, from), step);
  } else {
    TIterateObj2ErrorsAndDeltas gradient(terms);
    block.Iterate2(state_.gradients.Block(to, from), gradient);
  }
}

}  // namespace kiln
