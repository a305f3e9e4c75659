#include "Export/CLayers.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <typeinfo>
#include <vector>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TException.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"
#include "Tarn/TToConditionConnections.h"
#include "Tarn/TToOutputConnections.h"

namespace kiln::CFile {

namespace {

[[noreturn]] void Refuse(const char* message) {
  throw TException(message, "Bad Network", "CFile::Save");
}

// The array that holds the values of a layer. The last layer has that of the caller, unless it
// reads the input, which may be the same array.
std::string ArrayOf(const TBasicNetwork& network, std::size_t layer) {
  if (layer == network.InputLayer()) return "input";
  const bool is_output = layer == network.OutputLayer();
  const bool reads_input = std::ranges::count(network.Sources(layer), network.InputLayer()) > 0;
  if (is_output && !reads_input) return "output";
  return "layer" + std::to_string(layer);
}

// --- Activation functions --------------------------------------------------------------------

// A function of the sum in "@", with the gain in "#"; "$" stands for a function of the file.
struct TFormula {
  TActFunction function;
  const char* expression;
};

constexpr TFormula kFormulas[] = {
    {ActBias, "1.0"},
    {ActLinear, "@"},
    {ActSaturatedLinear, "@ > 1.0 ? 1.0 : @ > 0.0 ? @ : 0.0"},
    {ActSigmoid, "$(@)"},
    {ActTanh, "tanh(@)"},
    {ActLinearGain, "# * @"},
    {ActSigmoidGain, "1.0 / (1.0 + exp(-(# * @)))"},
    {ActTanhGain, "tanh(# * @)"},
};

const char* FormulaOf(TActFunction function) {
  const auto formula = std::ranges::find(kFormulas, function, &TFormula::function);
  return formula != std::end(kFormulas) ? formula->expression : nullptr;
}

std::string Replaced(std::string text, char sign, const std::string& by) {
  for (std::size_t at = 0; (at = text.find(sign, at)) != text.npos; at += by.size()) {
    text.replace(at, 1, by);
  }
  return text;
}

// The gain of neurons first..last-1 as C has it: a number, or an entry of a table where they
// differ.
std::string Gain(TCSource& source, const TBasicLayer& layer, std::size_t first, std::size_t last) {
  std::vector<double> gains(layer.NumNeurons());
  for (std::size_t i = first; i < last; ++i) gains[i] = layer.Neuron(i).Gain();
  const auto own = std::span<const double>(gains).subspan(first, last - first);
  if (std::ranges::count(own, own.front()) == std::ssize(own)) return CNumber(own.front());
  const std::string what = "gains_" + std::to_string(layer.Index()) + '_' + std::to_string(first);
  return source.Table(what, gains) + "[i]";
}

// Statements that turn the sums of a layer into its outputs, one for each run of neurons with one
// function.
void WriteActivation(TCSource& source, const TBasicLayer& layer, const std::string& values) {
  std::size_t first = 0;
  for (std::size_t last = 1; last <= layer.NumNeurons(); ++last) {
    const TActFunction function = layer.Neuron(first).GetActivation();
    if (last < layer.NumNeurons() && layer.Neuron(last).GetActivation() == function) continue;
    std::string expression = FormulaOf(function);
    if (expression.find('$') != expression.npos) {
      expression = Replaced(expression, '$', source.Function("sigmoid"));
    }
    if (expression.find('#') != expression.npos) {
      expression = Replaced(expression, '#', Gain(source, layer, first, last));
    }
    if (expression != "@") {
      source.Loop(first, last, values + "[i] = " + Replaced(expression, '@', values + "[i]"));
    }
    first = last;
  }
}

// --- Blocks ----------------------------------------------------------------------------------

std::string BlockName(const char* what, std::size_t to, std::size_t from) {
  return std::string(what) + '_' + std::to_string(to) + '_' + std::to_string(from);
}

// The connections of a block that exist, row after row.
struct TSparseBlock {
  explicit TSparseBlock(const TBasicConnections& block) {
    TIterateObjSaveWeights collect([this, row = std::size_t{0}](const TConnection& c) mutable {
      for (; row < c.to; ++row) ends.push_back(static_cast<int>(weights.size()));
      from.push_back(static_cast<int>(c.from));
      weights.push_back(c.weight);
    });
    block.Read(collect);
    ends.resize(block.Rows(), static_cast<int>(weights.size()));
  }

  std::vector<int> ends;
  std::vector<int> from;
  std::vector<double> weights;
};

// The statement that adds what comes through a block to the sums of its layer.
void WriteBlock(TCSource& source, const TBasicNetwork& network, std::size_t to, std::size_t from) {
  const TBasicConnections& block = network.Connections(to, from);
  if (block.Weights().empty()) return;
  const std::string ends = ArrayOf(network, from) + ", " + ArrayOf(network, to) + ')';
  const std::string rows = std::to_string(block.Rows()) + ", ";
  if (block.IsComplete()) {
    const std::string weights = source.Table(BlockName("weights", to, from), block.Weights());
    source.Statement(source.Function("add") + '(' + rows + std::to_string(block.Columns()) + ", " +
                     weights + ", " + ends);
    return;
  }
  const TSparseBlock sparse(block);
  if (sparse.weights.empty()) return;
  const std::string tables = source.Table(BlockName("ends", to, from), sparse.ends) + ", " +
                             source.Table(BlockName("from", to, from), sparse.from) + ", " +
                             source.Table(BlockName("weights", to, from), sparse.weights);
  source.Statement(source.Function("add_some") + '(' + rows + tables + ", " + ends);
}

// --- Layers ----------------------------------------------------------------------------------

// Whether a layer puts out the same in every recall.
bool IsConstant(const TBasicNetwork& network, std::size_t layer) {
  return layer != network.InputLayer() && network.Sources(layer).empty();
}

// Which layers the output of the network depends on.
std::vector<bool> NeededLayers(const TBasicNetwork& network) {
  std::vector<bool> needed(network.NumLayers());
  needed[network.OutputLayer()] = true;
  for (std::size_t layer = network.NumLayers(); layer-- > 0;) {
    if (!needed[layer]) continue;
    for (const std::size_t from : network.Sources(layer)) needed[from] = true;
  }
  return needed;
}

// The layers that the function computes, in its order: those that are needed, but for the input and
// for constant ones, which are in the tables. The output is computed in any case.
std::vector<std::size_t> ComputedLayers(const TBasicNetwork& network) {
  const std::vector<bool> needed = NeededLayers(network);
  std::vector<std::size_t> layers;
  for (std::size_t layer = 0; layer < needed.size(); ++layer) {
    if (!needed[layer] || network.Layer(layer).NumNeurons() == 0) continue;
    if (layer == network.InputLayer()) continue;
    if (layer == network.OutputLayer() || !IsConstant(network, layer)) layers.push_back(layer);
  }
  return layers;
}

// What a layer's sums begin with: what comes from layers that are constant. Nothing where none are.
std::optional<std::vector<double>> ConstantPart(const TBasicNetwork& network, std::size_t layer) {
  std::optional<std::vector<double>> sums;
  for (const std::size_t from : network.Sources(layer)) {
    if (!IsConstant(network, from)) continue;
    if (!sums) sums.emplace(network.Layer(layer).NumNeurons(), 0.0);
    network.Connections(layer, from).Accumulate(network.Layer(from).Outputs(), *sums);
  }
  return sums;
}

void WriteSums(TCSource& source, const TBasicNetwork& network, std::size_t layer) {
  const std::string values = ArrayOf(network, layer);
  const auto start = ConstantPart(network, layer);
  std::string first = "0.0";
  if (start) first = source.Table("start_" + std::to_string(layer), *start) + "[i]";
  source.Loop(0, network.Layer(layer).NumNeurons(), values + "[i] = " + first);
  for (const std::size_t from : network.Sources(layer)) {
    if (!IsConstant(network, from)) WriteBlock(source, network, layer, from);
  }
  WriteActivation(source, network.Layer(layer), values);
}

// A layer whose terms have their centres in the one block that leads to it.
void WriteFuzzyLayer(TCSource& source, const TBasicNetwork& network, const TFuzzyLayer& layer,
                     const char* function) {
  const std::size_t to = layer.Index();
  const std::size_t from = network.Sources(to).front();
  const std::string terms = source.Table("terms_" + std::to_string(to), layer.Groups().Counts());
  const std::string centres =
      source.Table(BlockName("centres", to, from), network.Connections(to, from).Weights());
  source.Statement(source.Function(function) + '(' + std::to_string(layer.Groups().NumVariables()) +
                   ", " + terms + ", " + centres + ", " + ArrayOf(network, from) + ", " +
                   ArrayOf(network, to) + ')');
}

void WriteLayer(TCSource& source, const TBasicNetwork& network, std::size_t index) {
  const TBasicLayer& layer = network.Layer(index);
  if (const auto* condition = dynamic_cast<const TConditionLayer*>(&layer)) {
    source.Function("membership");
    WriteFuzzyLayer(source, network, *condition, "fuzzify");
  } else if (const auto* output = dynamic_cast<const TTarnOutputLayer*>(&layer)) {
    WriteFuzzyLayer(source, network, *output, "defuzzify");
  } else {
    WriteSums(source, network, index);
  }
}

// --- Checks ----------------------------------------------------------------------------------

// Whether the one block that leads to a fuzzy layer holds its centres, between layers that fit.
bool IsJoinedBy(const TBasicNetwork& network, std::size_t layer, std::string_view kind) {
  const auto sources = network.Sources(layer);
  return sources.size() == 1 && !IsConstant(network, sources.front()) &&
         network.Connections(layer, sources.front()).KindName() == kind;
}

bool CanCompute(const TBasicNetwork& network, std::size_t index) {
  const TBasicLayer& layer = network.Layer(index);
  if (index == network.InputLayer()) {
    return typeid(layer) == typeid(TSimpleInputLayer) && network.Sources(index).empty();
  }
  if (typeid(layer) == typeid(TConditionLayer)) {
    return layer.GetActivation() == ActTarnCondition &&
           IsJoinedBy(network, index, TToConditionConnections::kKindName);
  }
  if (typeid(layer) == typeid(TTarnOutputLayer)) {
    return IsJoinedBy(network, index, TToOutputConnections::kKindName);
  }
  if (typeid(layer) != typeid(TSimpleLayer) && typeid(layer) != typeid(TGainLayer)) return false;
  for (std::size_t i = 0; i < layer.NumNeurons(); ++i) {
    if (!FormulaOf(layer.Neuron(i).GetActivation())) return false;
  }
  return true;
}

}  // namespace

void CheckLayers(const TBasicNetwork& network) {
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    const auto sources = network.Sources(layer);
    if (!sources.empty() && sources.back() >= layer) Refuse("Connections lead back");
  }
  const std::vector<bool> needed = NeededLayers(network);
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    const bool is_empty = network.Layer(layer).NumNeurons() == 0;
    if (needed[layer] && !is_empty && !CanCompute(network, layer)) {
      Refuse("Layer of a kind that C code cannot compute");
    }
  }
  if (network.NumInputs() == 0 || network.NumOutputs() == 0) Refuse("No inputs or outputs");
}

std::size_t StackOf(const TBasicNetwork& network) {
  std::size_t neurons = 0;
  for (const std::size_t layer : ComputedLayers(network)) {
    if (ArrayOf(network, layer) != "output") neurons += network.Layer(layer).NumNeurons();
  }
  return neurons * sizeof(double);
}

void WriteLayers(TCSource& source, const TBasicNetwork& network) {
  // Constant layers are computed now; the tables hold what comes of them.
  const std::unique_ptr<TBasicNetwork> computed = network.Clone();
  const std::vector<bool> needed = NeededLayers(*computed);
  for (std::size_t layer = 0; layer < needed.size(); ++layer) {
    if (needed[layer] && IsConstant(*computed, layer)) computed->Layer(layer).Compute({});
  }
  const std::string output = ArrayOf(*computed, computed->OutputLayer());
  for (const std::size_t layer : ComputedLayers(*computed)) {
    const std::string values = ArrayOf(*computed, layer);
    if (values != "output") source.Local(values, computed->Layer(layer).NumNeurons());
    WriteLayer(source, *computed, layer);
  }
  if (output != "output") source.Loop(0, computed->NumOutputs(), "output[i] = " + output + "[i]");
}

}  // namespace kiln::CFile
