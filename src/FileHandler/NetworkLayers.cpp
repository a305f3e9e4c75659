#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "FileHandler/NetworkKinds.h"
#include "FileHandler/NetworkReading.h"
#include "FileHandler/NetworkSections.h"
#include "FileHandler/TarnSections.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

constexpr std::string_view kBlock = "Layer";

// Reads one layer: first the statements about the layer and all of its neurons, then the lines of
// single neurons. Without such lines all neurons take the common function and values.
class LayerReader {
 public:
  // The layer may have at most `max_neurons` neurons. It must have `inputs` or `outputs` neurons
  // where these are given.
  LayerReader(Reader& reader, std::size_t max_neurons, std::optional<std::int64_t> inputs,
              std::optional<std::int64_t> outputs)
      : reader_(reader), max_neurons_(max_neurons), inputs_(inputs), outputs_(outputs) {}

  std::unique_ptr<TBasicLayer> Read();

 private:
  // The value of each named parameter, empty until the file gives it.
  using Values = std::vector<std::optional<double>>;

  ParseItem ReadCommon();
  ParseItem ReadAll();
  void SetCommon(const ParseItem& statement);
  void MakeWhenKnown();
  void CheckHeader() const;
  void ReadNeurons();
  std::size_t ReadNeuron(const ParseItem& first);
  void ApplyCommon();
  TActFunction ReadFunction(const ParseItem& statement) const;
  void SetValue(const ParseItem& statement);
  void ApplyValues(TBasicNeuron& neuron) const;

  Reader& reader_;
  const std::size_t max_neurons_;
  const std::optional<std::int64_t> inputs_;
  const std::optional<std::int64_t> outputs_;
  std::string_view kind_;
  std::optional<std::size_t> neurons_;
  std::unique_ptr<TBasicLayer> layer_;  // null until kind and number of neurons are known
  TActFunction function_ = nullptr;     // the common one
  // The common values. What a line sets for its neuron holds on later lines as well.
  Values values_;
};

std::unique_ptr<TBasicLayer> LayerReader::Read() {
  ParseItem next = ReadCommon();
  if (!layer_) FailLoad(reader_, "Incomplete Layer information");
  next = ReadMembership(reader_, next, *layer_);
  if (next.kind == ParseItem::kStartTag && EqualNoCase(next.name, "Neurons")) {
    ReadNeurons();
    next = reader_.ReadItem(kBlock);
  } else {
    ApplyCommon();
  }
  ExpectEndTag(next, reader_);
  // Where all neurons have the same function, even from lines of their own, it is set for the
  // layer, which then activates them as one row.
  if (const TActFunction common = layer_->GetActivation()) layer_->SetActivation(common);
  return std::move(layer_);
}

// Returns the first item that is none of the statements.
ParseItem LayerReader::ReadCommon() {
  for (;;) {
    ParseItem item = reader_.ReadItem(kBlock);
    if (item.kind == ParseItem::kStartTag && EqualNoCase(item.name, "ALL")) {
      if (!item.unbracketed) FailLoad(reader_, "[ALL] is incomplete statement");
      item = ReadAll();
    }
    if (item.kind != ParseItem::kStatement) return item;
    CheckClosed(item, reader_);
    SetCommon(item);
  }
}

ParseItem LayerReader::ReadAll() {
  const ParseItem item = reader_.ReadUnbracketedItem(kBlock);
  if (item.kind != ParseItem::kStatement) {
    FailLoad(reader_, "Required syntax is [ALL <keyword>=<val>");  // frozen without its "]"
  }
  return item;
}

void LayerReader::SetCommon(const ParseItem& statement) {
  if (EqualNoCase(statement.name, "ActivationFunction")) {
    function_ = ReadFunction(statement);
  } else if (layer_) {
    SetValue(statement);
  } else if (EqualNoCase(statement.name, "LayerType")) {
    kind_ = statement.value;
    MakeWhenKnown();
  } else if (EqualNoCase(statement.name, "NumberOfNeurons")) {
    neurons_ = ReadCount(statement, reader_, max_neurons_);
    MakeWhenKnown();
  } else {
    FailLoad(reader_, "Unknown keyword");
  }
}

void LayerReader::MakeWhenKnown() {
  if (kind_.empty() || !neurons_) return;
  layer_ = MakeLayer(kind_, *neurons_);
  if (!layer_) FailLoad(reader_, "Unknown layer type");
  CheckHeader();
  if (*neurons_ > 0) values_.resize(layer_->Neuron(0).NumParameters());
}

void LayerReader::CheckHeader() const {
  const auto neurons = static_cast<std::int64_t>(*neurons_);
  if (inputs_ && *inputs_ != neurons) FailLoad(reader_, "wrong number of inputs in header");
  // The missing word is frozen.
  if (outputs_ && *outputs_ != neurons) FailLoad(reader_, "wrong number outputs in header");
}

void LayerReader::ReadNeurons() {
  std::vector<bool> given(*neurons_);
  std::size_t missing = *neurons_;
  ParseItem item = reader_.ReadItem("Neurons");
  for (; item.kind == ParseItem::kStatement; item = reader_.ReadItem("Neurons")) {
    const std::size_t index = ReadNeuron(item);
    if (given[index]) FailLoad(reader_, "repeated neuron");
    given[index] = true;
    --missing;
  }
  ExpectEndTag(item, reader_);
  if (missing > 0) FailLoad(reader_, "Neuron not defined");
}

// Reads the line that starts with the statement `first`. Returns the neuron's index.
std::size_t LayerReader::ReadNeuron(const ParseItem& first) {
  const std::int64_t number = ExpectInteger(first, reader_, "Neuron");
  Assert(number >= 0, "neuronnum>=0", kModule);
  const auto index = static_cast<std::size_t>(number);
  Assert(index < *neurons_, "neuronnum<numneurons", kModule);

  TActFunction function = function_;
  for (ParseItem item = first; item.unbracketed;) {
    item = reader_.ReadUnbracketedItem("Neurons");
    if (item.kind != ParseItem::kStatement) {
      FailLoad(reader_, "Equals clause expected in neuron parameter");
    }
    if (EqualNoCase(item.name, "ActivationFunction")) {
      function = ReadFunction(item);
    } else {
      SetValue(item);
    }
  }
  if (!function) FailLoad(reader_, "No activation function defined");
  TBasicNeuron& neuron = layer_->Neuron(index);
  neuron.SetActivation(function);
  ApplyValues(neuron);
  return index;
}

// Settles every neuron of a layer that has no lines of single neurons.
void LayerReader::ApplyCommon() {
  if (*neurons_ > 0 && !function_) FailLoad(reader_, "No activation function defined");
  for (const std::optional<double>& value : values_) {
    if (!value) FailLoad(reader_, "Incomplete Layer information");
  }
  if (function_) layer_->SetActivation(function_);
  for (std::size_t i = 0; i < *neurons_; ++i) ApplyValues(layer_->Neuron(i));
}

TActFunction LayerReader::ReadFunction(const ParseItem& statement) const {
  const TFnRegistry& functions = TFnRegistry::Instance();
  if (!functions.Contains(statement.value)) {
    FailLoad(reader_, "Unknown activation function " + std::string(statement.value));
  }
  return functions.Lookup(statement.value);
}

void LayerReader::SetValue(const ParseItem& statement) {
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (!EqualNoCase(layer_->Neuron(0).ParameterName(i), statement.name)) continue;
    values_[i] = FileTools::ParseNumber(statement.value, reader_);
    return;
  }
  FailLoad(reader_, "Unknown keyword");
}

void LayerReader::ApplyValues(TBasicNeuron& neuron) const {
  for (std::size_t i = 0; i < values_.size(); ++i) {
    if (values_[i]) neuron.SetParameter(i, *values_[i]);
  }
}

// The number of neurons that the header demands of a layer, if it `concerns` that layer.
std::optional<std::int64_t> Demand(std::optional<std::int64_t> number, bool concerns) {
  return concerns ? number : std::nullopt;
}

std::size_t ReadLayerIndex(const ParseItem& statement, Reader& reader, std::size_t layers) {
  CheckClosed(statement, reader);
  const std::int64_t number = FileTools::ParseInteger(statement.value, reader);
  Assert(number >= 0, "layernum >= 0", kModule);
  const auto index = static_cast<std::size_t>(number);
  Assert(index < layers, "layernum < numlayers", kModule);
  return index;
}

}  // namespace

ParseItem ReadLayers(Reader& reader, const NetworkHeader& header, TBasicNetwork& network) {
  // A neuron shows in the rest of the file by a weight and what separates it from the next.
  std::size_t neurons_left = kFreeNeurons + reader.Remaining() / 2;
  std::vector<bool> given(network.NumLayers());
  ParseItem item = reader.ReadItem("NeuralNetwork");
  while (item.kind == ParseItem::kStatement && EqualNoCase(item.name, kBlock)) {
    const std::size_t index = ReadLayerIndex(item, reader, network.NumLayers());
    if (given[index]) FailLoad(reader, "repeated layer");
    given[index] = true;
    LayerReader layer_reader(reader, std::min(neurons_left, TBasicLayer::kMaxNeurons),
                             Demand(header.inputs, index == header.input_layer),
                             Demand(header.outputs, index == header.output_layer));
    network.SetLayer(index, layer_reader.Read());
    neurons_left -= network.Layer(index).NumNeurons();
    item = reader.ReadItem("NeuralNetwork");
  }
  for (const bool layer_given : given) Assert(layer_given, "layers[i] != NULL", kModule);
  return item;
}

}  // namespace kiln::NetworkFiler
