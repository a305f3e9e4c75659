#include "Tarn/TTarn.h"

#include <array>
#include <cstdint>
#include <string>

#include "DataObject/Data.h"
#include "NeuralNets/Limits.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"
#include "Tarn/TToConditionConnections.h"
#include "Tarn/TToOutputConnections.h"

namespace kiln {

namespace {

constexpr int kLayers = 6;
constexpr char kConstructor[] = "TTarn::TTarn";

[[noreturn]] void FailParameter(const std::string& message, const char* function) {
  throw TException(message, "Bad Parameter", function);
}

[[noreturn]] void FailSize(const std::string& message) {
  FailParameter(message, kConstructor);
}

void CheckTerms(std::span<const int> counts, const std::string& side) {
  for (const int count : counts) {
    if (count < 2) FailSize("Must be >= 2 MF per " + side);
  }
}

void CheckCount(std::uint64_t limit, std::uint64_t count, const char* parts) {
  CheckAtMost(limit, count, "a Tarn", parts, kConstructor);
}

// Adds everything up before a layer takes memory.
void CheckSizes(std::span<const int> input_mf, int rules, std::span<const int> output_mf) {
  CheckTerms(input_mf, "input");
  CheckTerms(output_mf, "output");
  if (input_mf.empty() || rules < 1 || output_mf.empty()) {
    FailSize("a Tarn needs an input, a rule and an output");
  }
  const auto num_rules = static_cast<std::uint64_t>(rules);
  const std::uint64_t terms = TMFGroups(input_mf).NumMF() + TMFGroups(output_mf).NumMF();
  CheckCount(TBasicLayer::kMaxNeurons, input_mf.size() + terms + num_rules + output_mf.size(),
             "neurons");
  CheckCount(TBasicNetwork::kMaxWeights, terms * num_rules + terms, "weights");
}

bool IsWhole(const TBasicConnections& block) {
  TIterateObjCount count;
  block.Read(count);
  return count.Existing() == block.Weights().size();
}

// The weight layer as the index of its lower layer.
std::size_t CheckedWeightLayer(int weight_layer, const char* function) {
  if (weight_layer < 1 || weight_layer > 4) FailParameter("Invalid weight layer", function);
  return static_cast<std::size_t>(weight_layer);
}

// The neuron of a connection that is looked up: a negative number becomes a position that no block
// has.
std::size_t ToIndex(int node) {
  return static_cast<std::size_t>(node);
}

// Lets the neuron just behind the last one pass, which callers have come to rely on.
void CheckNode(int node, const TBasicLayer& layer) {
  if (node < 0 || ToIndex(node) > layer.NumNeurons()) {
    FailParameter("Invalid node number", "TTarn::WeightExists");
  }
}

}  // namespace

TTarn::TTarn() : TConnectedNetwork(kLayers) {}

TTarn::TTarn(std::span<const int> input_mf, int rules, std::span<const int> output_mf) : TTarn() {
  CheckSizes(input_mf, rules, output_mf);
  SetLayer(kInputLayer, std::make_unique<TSimpleInputLayer>(input_mf.size()));
  SetLayer(kConditionLayer, std::make_unique<TConditionLayer>(input_mf));
  SetLayer(kRuleLayer, std::make_unique<TSimpleLayer>(static_cast<std::size_t>(rules)));
  SetLayer(kActionLayer, std::make_unique<TSimpleLayer>(TMFGroups(output_mf).NumMF()));
  SetLayer(kOutputLayer, std::make_unique<TTarnOutputLayer>(output_mf));
  Layer(kInputLayer).SetActivation(ActLinear);
  Layer(kConditionLayer).SetActivation(ActTarnCondition);
  Layer(kRuleLayer).SetActivation(ActSigmoid);
  Layer(kActionLayer).SetActivation(ActSigmoid);
  Layer(kOutputLayer).SetActivation(ActCog);

  SetConnections(kConditionLayer, kInputLayer, std::make_unique<TToConditionConnections>());
  Connect(kConditionLayer, kRuleLayer);
  Connect(kRuleLayer, kActionLayer);
  SetConnections(kOutputLayer, kActionLayer, std::make_unique<TToOutputConnections>());
  Centres(kConditionLayer).PlaceEvenly();
  Centres(kOutputLayer).PlaceEvenly();
}

bool TTarn::IsComplete() const {
  return InputLayer() == kInputLayer && OutputLayer() == kOutputLayer && HasLayers() &&
         HasConnections();
}

bool TTarn::HasLayers() const {
  constexpr std::array<std::string_view, kLayers> kKinds = {"Simple", "Input",  "FuzzyCondition",
                                                            "Simple", "Simple", "Defuzzify"};
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (Layer(i).KindName() != kKinds[i]) return false;
  }
  return Layer(0).NumNeurons() == 0 && Layer(kConditionLayer).GetActivation() == ActTarnCondition &&
         Layer(kRuleLayer).GetActivation() == ActSigmoid &&
         Layer(kActionLayer).GetActivation() == ActSigmoid;
}

bool TTarn::HasConnections() const {
  for (std::size_t to = 0; to < NumLayers(); ++to) {
    const bool is_joined = to >= kConditionLayer;
    if (Sources(to).size() != (is_joined ? 1 : 0)) return false;
    if (is_joined && Sources(to).front() != to - 1) return false;
  }
  const TBasicConnections& conditions = Connections(kConditionLayer, kInputLayer);
  const TBasicConnections& outputs = Connections(kOutputLayer, kActionLayer);
  return conditions.KindName() == TToConditionConnections::kKindName && IsWhole(conditions) &&
         outputs.KindName() == TToOutputConnections::kKindName && IsWhole(outputs);
}

std::unique_ptr<TBasicNetwork> TTarn::Clone() const {
  return std::make_unique<TTarn>(*this);
}

std::vector<int> TTarn::InputMF() const {
  return static_cast<const TFuzzyLayer&>(Layer(kConditionLayer)).Groups().Counts();
}

std::vector<int> TTarn::OutputMF() const {
  return static_cast<const TFuzzyLayer&>(Layer(kOutputLayer)).Groups().Counts();
}

TCentreConnections& TTarn::Centres(std::size_t to) {
  return static_cast<TCentreConnections&>(Connections(to, to - 1));
}

// --- Weights ---------------------------------------------------------------------------------

double TTarn::GetWeightValue(int weight_layer, int from, int to) const {
  constexpr char kFunction[] = "TTarn::GetWeightValue";
  const std::size_t lower = CheckedWeightLayer(weight_layer, kFunction);
  const TBasicConnections& block = Connections(lower + 1, lower);
  if (!block.HasPlace(ToIndex(to), ToIndex(from))) {
    FailParameter("Invalid weight number", kFunction);
  }
  return block.GetWeight(ToIndex(to), ToIndex(from));
}

void TTarn::SetWeightValue(int weight_layer, int from, int to, double value) {
  TBasicConnections& block = BlockWith(weight_layer, from, to, "TTarn::SetWeightValue");
  block.SetWeight(ToIndex(to), ToIndex(from), value);
}

void TTarn::FreezeWeight(int weight_layer, int from, int to) {
  TBasicConnections& block = BlockWith(weight_layer, from, to, "TTarn::FreezeWeight");
  block.SetTrainable(ToIndex(to), ToIndex(from), false);
}

void TTarn::UnfreezeWeight(int weight_layer, int from, int to) {
  TBasicConnections& block = BlockWith(weight_layer, from, to, "TTarn::UnfreezeWeight");
  block.SetTrainable(ToIndex(to), ToIndex(from), true);
}

TBasicConnections& TTarn::BlockWith(int weight_layer, int from, int to, const char* function) {
  const std::size_t lower = CheckedWeightLayer(weight_layer, function);
  TBasicConnections& block = Connections(lower + 1, lower);
  if (!block.Exists(ToIndex(to), ToIndex(from))) FailParameter("Invalid weight number", function);
  return block;
}

bool TTarn::WeightExists(int weight_layer, int from, int to) const {
  const std::size_t lower = CheckedWeightLayer(weight_layer, "TTarn::WeightExists");
  CheckNode(from, Layer(lower));
  CheckNode(to, Layer(lower + 1));
  return Connections(lower + 1, lower).Exists(ToIndex(to), ToIndex(from));
}

std::vector<double> TTarn::GetWeightLayer(int weight_layer) const {
  const std::size_t lower = CheckedWeightLayer(weight_layer, "TTarn::GetWeightLayer");
  const auto weights = Connections(lower + 1, lower).Weights();
  return {weights.begin(), weights.end()};
}

void TTarn::SetWeightLayer(int weight_layer, std::span<const double> values) {
  constexpr char kFunction[] = "TTarn::SetWeightLayer";
  const std::size_t lower = CheckedWeightLayer(weight_layer, kFunction);
  TBasicConnections& block = Connections(lower + 1, lower);
  if (values.size() != block.Weights().size()) {
    FailParameter("Invalid number of weights", kFunction);
  }
  TIterateObjSetWeights set(values, FMaskAll);
  block.Iterate(set);
}

void TTarn::InitWeights(double minimum, double maximum) {
  Assert(!(maximum < minimum), "Minimum <= Maximum");
  TIterateObjRandomize randomize(minimum, maximum);
  Centres(kConditionLayer).PlaceEvenly();
  Connections(kRuleLayer, kConditionLayer).Iterate(randomize);
  Connections(kActionLayer, kRuleLayer).Iterate(randomize);
  Centres(kOutputLayer).PlaceEvenly();
}

// --- Recall ----------------------------------------------------------------------------------

double TTarn::GetActivationValue(int node_layer, int node) const {
  constexpr char kFunction[] = "TTarn::GetActivationValue";
  if (node_layer < 0 || node_layer >= kLayers) FailParameter("Invalid node layer", kFunction);
  const auto outputs = Layer(static_cast<std::size_t>(node_layer)).Outputs();
  if (node < 0 || ToIndex(node) >= outputs.size()) {
    FailParameter("Invalid node number", kFunction);
  }
  return outputs[ToIndex(node)];
}

std::unique_ptr<Data> TTarn::Recall(const Data* in) {
  if (in == nullptr) {
    throw TException("Null data pointer", "Null Pointer Parameter", "TTarn::Recall");
  }
  return TBasicNetwork::Recall(in);
}

}  // namespace kiln
