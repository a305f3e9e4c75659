#include "NeuralNets/Training/TBlockPass.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Kernels/Transpose.h"
#include "NeuralNets/TeamProducts.h"
#include "NeuralNets/Training/ActDerivatives.h"
#include "NeuralNets/Training/TPatternEnds.h"

namespace kiln {

bool TBlockPass::Fits(const TBasicNetwork& network, const TTrainRun& run) {
  return run.batch >= kMinPatterns && TPatternBlock::Fits(network);
}

TBlockPass::TBlockPass(TTrainState& state, const TTrainRun& run)
    : TTrainPass(TKind::kAddsGradients),
      state_(state),
      run_(run),
      network_(*state.network),
      outputs_(network_, static_cast<std::size_t>(run.batch)),
      output_(network_.NumOutputs()) {
  const std::size_t patterns = outputs_.Patterns();
  std::size_t largest = 0;
  for (std::size_t layer = 0; layer < network_.NumLayers(); ++layer) {
    const std::size_t neurons = network_.Layer(layer).NumNeurons();
    errors_.emplace_back(network_.HasLowerSources(layer) ? neurons * patterns : 0);
    largest = std::max(largest, PaddedSize(neurons));
  }
  rows_.resize(largest * patterns);
}

void TBlockPass::Run(const Data& data, int first, int last, TErrorObj& error) {
  const int patterns = static_cast<int>(outputs_.Patterns());
  for (int n = first; n < last; n += patterns) RunBlock(data, n, last, error);
}

void TBlockPass::RunBlock(const Data& data, int first, int last, TErrorObj& error) {
  outputs_.Recall(data, first, last);
  for (TPlacedVector<double>& errors : errors_) std::ranges::fill(errors, 0.0);
  StartErrors(data, first, error);
  for (std::size_t layer = network_.NumLayers(); layer-- > 0;) {
    if (!errors_[layer].empty()) TrainLayer(layer);
  }
}

void TBlockPass::TrainLayer(std::size_t layer) {
  if (!run_.ErrorsAreDeltas(network_, layer)) {
    ErrorsToDeltas(network_.Layer(layer), outputs_.Outputs(layer), errors_[layer]);
  }
  for (const std::size_t from : network_.Sources(layer)) {
    AddGradients(layer, from);
    if (!errors_[from].empty()) Propagate(layer, from);
  }
}

void TBlockPass::StartErrors(const Data& data, int first, TErrorObj& error) {
  const std::size_t layer = network_.OutputLayer();
  const std::span<double> errors = errors_[layer];
  for (std::size_t p = 0; p < outputs_.Count(); ++p) {
    const std::span<const double> desired = data.Row(first + static_cast<int>(p)).Outputs;
    outputs_.GetPattern(layer, p, output_);
    error.Accumulate(desired, output_);
    if (!errors.empty()) SetOutputErrors(desired, output_, errors.data() + p, outputs_.Patterns());
  }
}

// The gradient of a weight is the sum over the patterns of delta times output.
void TBlockPass::AddGradients(std::size_t to, std::size_t from) {
  const std::size_t neurons = network_.Layer(from).NumNeurons();
  const std::size_t stride = PaddedSize(neurons);
  const double* outputs = outputs_.Outputs(from).data();
  Transpose(
      neurons, outputs_.Count(), [&](std::size_t i) { return outputs + i * outputs_.Patterns(); },
      rows_.data(), stride);
  const TMatrixView deltas = {errors_[to].data(), outputs_.Patterns(), 1};
  MultiplyByTeam(network_.Layer(to).NumNeurons(), outputs_.Count(), neurons, deltas, rows_.data(),
                 stride, state_.gradients.Block(to, from).data(), neurons);
}

// The error of a neuron is the sum over its targets of weight times delta.
void TBlockPass::Propagate(std::size_t to, std::size_t from) {
  const TBasicConnections& block = network_.Connections(to, from);
  const TMatrixView weights = {block.Weights().data(), 1, block.Columns()};
  MultiplyByTeam(block.Columns(), block.Rows(), outputs_.Width(), weights, errors_[to].data(),
                 outputs_.Patterns(), errors_[from].data(), outputs_.Patterns());
}

}  // namespace kiln
