#include "NeuralNets/TPatternBlock.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Kernels/Transpose.h"
#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/TeamProducts.h"

namespace kiln {

namespace {

// Whether a layer passes sums over all neurons of the layers that lead to it through functions.
bool IsWholeAndPlain(const TBasicNetwork& network, std::size_t to) {
  const auto is_complete = [&](std::size_t from) {
    return network.Connections(to, from).IsComplete();
  };
  return IsPlainLayer(network, to) && std::ranges::all_of(network.Sources(to), is_complete);
}

}  // namespace

bool TPatternBlock::Fits(const TBasicNetwork& network) {
  if (network.GetNumNeurons() > kMaxNeurons || !IsFeedForward(network)) return false;
  for (std::size_t to = 0; to < network.NumLayers(); ++to) {
    if (!network.Layer(to).ComputesBlocks() && !IsWholeAndPlain(network, to)) return false;
  }
  return true;
}

std::size_t TPatternBlock::PatternsFor(const TBasicNetwork& network, std::size_t most) {
  if (most <= kPatterns) return kPatterns;  // asked again for each set, of which many are small
  const auto neurons = static_cast<std::size_t>(network.GetNumNeurons());
  const auto weights = static_cast<std::size_t>(network.GetNumWeights(FMaskAll));
  const auto has_room = [neurons](std::size_t patterns) {
    return neurons * patterns <= kMaxNeurons * kPatterns;
  };
  if (most > kManyPatterns && weights > kMostWeights && has_room(kMostPatterns)) {
    return kMostPatterns;
  }
  return weights > kManyWeights && has_room(kManyPatterns) ? kManyPatterns : kPatterns;
}

TPatternBlock::TPatternBlock(TBasicNetwork& network, std::size_t most)
    : network_(network), patterns_(PatternsFor(network, most)), rows_(patterns_) {
  std::size_t largest = 0;
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    outputs_.emplace_back(network.Layer(layer).NumNeurons() * patterns_);
    largest = std::max(largest, outputs_.back().size());
  }
  net_inputs_.resize(largest);
}

std::size_t TPatternBlock::Width() const {
  return PaddedSize(count_);
}

void TPatternBlock::Recall(const Data& data, int first, int last) {
  count_ = std::min(patterns_, static_cast<std::size_t>(last - first));
  SetInputs(data, first);
  for (std::size_t layer = 0; layer < network_.NumLayers(); ++layer) {
    if (layer != network_.InputLayer()) Compute(layer);
    GetPattern(layer, count_ - 1, network_.Layer(layer).Outputs());
  }
}

void TPatternBlock::GetPattern(std::size_t layer, std::size_t pattern,
                               std::span<double> values) const {
  const std::span<const double> outputs = outputs_[layer];
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = outputs[i * patterns_ + pattern];
}

void TPatternBlock::SetInputs(const Data& data, int first) {
  for (std::size_t p = 0; p < count_; ++p) {
    rows_[p] = data.Row(first + static_cast<int>(p)).Inputs.data();
  }
  Transpose(
      count_, network_.NumInputs(), [&](std::size_t p) { return rows_[p]; },
      outputs_[network_.InputLayer()].data(), patterns_);
}

void TPatternBlock::Compute(std::size_t layer) {
  if (network_.Layer(layer).ComputesBlocks()) {
    const std::size_t from = network_.Sources(layer).front();
    return network_.Layer(layer).ComputeBlock(outputs_[from], outputs_[layer], Shape());
  }
  const std::size_t neurons = network_.Layer(layer).NumNeurons();
  std::fill_n(net_inputs_.begin(), neurons * patterns_, 0.0);
  for (const std::size_t from : network_.Sources(layer)) {
    const TBasicConnections& block = network_.Connections(layer, from);
    const TMatrixView weights = {block.Weights().data(), block.Columns(), 1};
    MultiplyByTeam(neurons, block.Columns(), Width(), weights, outputs_[from].data(), patterns_,
                   net_inputs_.data(), patterns_);
  }
  Activate(layer);
}

void TPatternBlock::Activate(std::size_t layer) {
  TBasicLayer& neurons = network_.Layer(layer);
  const std::span<double> outputs = outputs_[layer];
  const std::span<const double> net_inputs(net_inputs_.data(), outputs.size());
  if (const TActRowFunction row_form = neurons.RowForm()) return row_form(net_inputs, outputs);
  for (std::size_t p = 0; p < count_; ++p) {
    for (std::size_t i = 0; i < neurons.NumNeurons(); ++i) {
      neurons.Neuron(i).Activate(net_inputs[i * patterns_ + p]);
      outputs[i * patterns_ + p] = neurons.Outputs()[i];
    }
  }
}

}  // namespace kiln
