#include "NeuralNets/Training/TBackpropBlock.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Kernels/Transpose.h"
#include "NeuralNets/Training/ActDerivatives.h"

namespace kiln {

namespace {

constexpr std::size_t kPatterns = TPatternBlock::kPatterns;
constexpr int kMinPatterns = 4;  // fewer leave most of the registers empty

}  // namespace

bool TBackpropBlock::Fits(const TBasicNetwork& network, int patterns) {
  return patterns >= kMinPatterns && TPatternBlock::Fits(network);
}

TBackpropBlock::TBackpropBlock(TBasicNetwork& network, TBasicNetwork& gradients)
    : network_(network), gradients_(gradients), outputs_(network) {
  std::size_t largest = 0;
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    const std::size_t neurons = network.Layer(layer).NumNeurons();
    errors_.emplace_back(network.HasLowerSources(layer) ? neurons * kPatterns : 0);
    largest = std::max(largest, PaddedSize(neurons));
  }
  rows_.resize(largest * kPatterns);
}

void TBackpropBlock::Run(const Data& data, TTrainRun& run) {
  for (int n = 0; n < data.DataRows(); n += kPatterns) RunBlock(data, n, run);
}

void TBackpropBlock::RunBlock(const Data& data, int first, TTrainRun& run) {
  outputs_.Recall(data, first);
  for (std::vector<double>& errors : errors_) std::ranges::fill(errors, 0.0);
  SetOutputErrors(data, first, run);
  for (std::size_t layer = network_.NumLayers(); layer-- > 0;) {
    if (errors_[layer].empty()) continue;
    if (!run.ErrorsAreDeltas(network_, layer)) {
      ErrorsToDeltas(network_.Layer(layer), outputs_.Outputs(layer), errors_[layer]);
    }
    for (const std::size_t from : network_.Sources(layer)) {
      AddGradients(layer, from);
      if (!errors_[from].empty()) Propagate(layer, from);
    }
  }
}

void TBackpropBlock::SetOutputErrors(const Data& data, int first, TTrainRun& run) {
  const std::size_t layer = network_.OutputLayer();
  std::vector<double>& errors = errors_[layer];
  for (std::size_t p = 0; p < outputs_.Count(); ++p) {
    const std::span<const double> desired = data.Row(first + static_cast<int>(p)).Outputs;
    outputs_.GetPattern(layer, p, run.output);
    run.error->Accumulate(desired, run.output);
    if (errors.empty()) continue;
    for (std::size_t i = 0; i < desired.size(); ++i) {
      errors[i * kPatterns + p] = run.output[i] - desired[i];
    }
  }
}

// The gradient of a weight is the sum over the patterns of delta times output.
void TBackpropBlock::AddGradients(std::size_t to, std::size_t from) {
  const std::size_t neurons = network_.Layer(from).NumNeurons();
  const std::size_t stride = PaddedSize(neurons);
  const double* outputs = outputs_.Outputs(from).data();
  Transpose(
      neurons, outputs_.Count(), [&](std::size_t i) { return outputs + i * kPatterns; },
      rows_.data(), stride);
  const TMatrixView deltas = {errors_[to].data(), kPatterns, 1};
  Kernels().multiply(network_.Layer(to).NumNeurons(), outputs_.Count(), neurons, deltas,
                     rows_.data(), stride, gradients_.Connections(to, from).Weights().data(),
                     neurons);
}

// The error of a neuron is the sum over its targets of weight times delta.
void TBackpropBlock::Propagate(std::size_t to, std::size_t from) {
  const TBasicConnections& block = network_.Connections(to, from);
  const TMatrixView weights = {block.Weights().data(), 1, block.Columns()};
  Kernels().multiply(block.Columns(), block.Rows(), outputs_.Width(), weights, errors_[to].data(),
                     kPatterns, errors_[from].data(), kPatterns);
}

}  // namespace kiln
