#include "Tarn/RuleExtraction/NetworkLabels.h"

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "FileHandler/Syntax/ParseTools.h"
#include "Shared/TDistinctNames.h"
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

using TSetName = void (TNetLabel::*)(int number, std::string name);

// Names the terms of each variable that has as many; `counts` are the terms of all of them.
void NameTerms(TNetLabel& labels, std::span<const int> counts, std::span<const std::string> terms,
               TSetName set_name) {
  int first = 0;
  for (const int count : counts) {
    for (int k = 0; k < count && count == std::ssize(terms); ++k) {
      (labels.*set_name)(first + k, terms[static_cast<std::size_t>(k)]);
    }
    first += count;
  }
}

}  // namespace

void NameVariables(TNetLabel& labels, const ColumnNames& names) {
  const auto name_side = [&](const std::vector<std::string>& side, int variables, auto set_name) {
    if (std::ssize(side) != variables) return;
    TDistinctNames words;
    for (int v = 0; v < variables; ++v) {
      (labels.*set_name)(v, words.Take(FileTools::ToWord(side[static_cast<std::size_t>(v)])));
    }
  };
  name_side(names.Inputs, labels.NumInputs(), &TNetLabel::SetInputName);
  name_side(names.Outputs, labels.NumOutputs(), &TNetLabel::SetOutputName);
}

void NameInputTerms(TNetLabel& labels, std::span<const std::string> terms) {
  NameTerms(labels, labels.InputMF(), terms, &TNetLabel::SetConditionName);
}

void NameOutputTerms(TNetLabel& labels, std::span<const std::string> terms) {
  NameTerms(labels, labels.OutputMF(), terms, &TNetLabel::SetActionName);
}

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
