#include "NeuralNets/Training/TWeightBuffer.h"

#include <algorithm>

#include "NeuralNets/TBasicNetwork.h"

namespace kiln {

TWeightBuffer::TWeightBuffer(const TBasicNetwork& network) : layers_(network.NumLayers()) {
  places_.reserve(layers_ * layers_);
  std::size_t lines = 0;
  for (std::size_t from = 0; from < layers_; ++from) {
    for (std::size_t to = 0; to < layers_; ++to) {
      const std::size_t size = network.Connections(to, from).Weights().size();
      places_.push_back({lines * TCacheLine::kValues, size});
      lines += TCacheLine::LinesOf(size);
    }
  }
  lines_.resize(lines + 1);  // the last one holds the extra number
}

std::span<double> TWeightBuffer::Values() {
  return {lines_.front().values, lines_.size() * TCacheLine::kValues};
}

std::span<const double> TWeightBuffer::Values() const {
  return {lines_.front().values, lines_.size() * TCacheLine::kValues};
}

void TWeightBuffer::Clear() {
  std::ranges::fill(Values(), 0.0);
}

void TWeightBuffer::CopyFrom(const TBasicNetwork& network) {
  for (std::size_t to = 0; to < layers_; ++to) {
    for (const std::size_t from : network.Sources(to)) {
      std::ranges::copy(network.Connections(to, from).Weights(), Block(to, from).begin());
    }
  }
}

void TWeightBuffer::CopyTo(TBasicNetwork& network) const {
  for (std::size_t to = 0; to < layers_; ++to) {
    for (const std::size_t from : network.Sources(to)) {
      std::ranges::copy(Block(to, from), network.Connections(to, from).Weights().begin());
    }
  }
}

}  // namespace kiln
