#include "Tarn/RuleExtraction/NetworkLabels.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln {

namespace {

constexpr std::size_t kTarnLayers = 6;

// A layer, or the last one of a network that ends before it.
const TBasicLayer& LayerAt(const TBasicNetwork& network, std::size_t index) {
  return network.Layer(std::min(index, network.NumLayers() - 1));
}

// No term for each neuron.
std::vector<int> NoTerms(const TBasicLayer& layer) {
  return std::vector<int>(layer.NumNeurons());
}

}  // namespace

TNetLabel MakeDefaultLabels(const TBasicNetwork& network) {
  std::vector<int> input_mf = NoTerms(LayerAt(network, 1));
  const auto* conditions = dynamic_cast<const TConditionLayer*>(&LayerAt(network, 2));
  if (!conditions) return MakeDefaultLabels(std::move(input_mf), NoTerms(LayerAt(network, 3)));

  input_mf = conditions->Groups().Counts();
  const auto* outputs = dynamic_cast<const TTarnOutputLayer*>(&LayerAt(network, 5));
  if (!outputs || network.NumLayers() != kTarnLayers) {
    return MakeDefaultLabels(std::move(input_mf), NoTerms(LayerAt(network, 4)));
  }
  return MakeDefaultLabels(std::move(input_mf), outputs->Groups().Counts());
}

}  // namespace kiln
