#include "NeuralNets/TBasicNetwork.h"

#include <algorithm>
#include <string>

#include "NeuralNets/Limits.h"
#include "NeuralNets/TEmptyConnections.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

std::size_t CheckedLayers(int layers) {
  const auto limit = static_cast<int>(TBasicNetwork::kMaxLayers);
  if (layers < 1 || layers > limit) {
    throw TException("a network of " + std::to_string(layers) + " layers is not within 1 to " +
                         std::to_string(limit),
                     "Bad Parameter", "TBasicNetwork::TBasicNetwork");
  }
  return static_cast<std::size_t>(layers);
}

void CheckWeights(std::uint64_t weights, const char* function) {
  CheckAtMost(TBasicNetwork::kMaxWeights, weights, "a network", "weights", function);
}

}  // namespace

TBasicNetwork::TBasicNetwork(int layers)
    : input_layer_(layers > 1 ? 1 : 0),
      output_layer_(CheckedLayers(layers) - 1),
      layers_(output_layer_ + 1),
      blocks_(layers_.size() * layers_.size()),
      sources_(layers_.size()) {
  for (std::size_t i = 0; i < NumLayers(); ++i) {
    layers_[i] = std::make_unique<TSimpleLayer>(0);
    layers_[i]->Attach(*this, i);
  }
  for (auto& block : blocks_) {
    block = std::make_unique<TEmptyConnections>();
    block->Attach(*layers_[0], *layers_[0]);
  }
}

TBasicNetwork::TBasicNetwork(const TBasicNetwork& other) : layers_(other.layers_.size()) {
  Assign(other);
}

std::unique_ptr<TBasicNetwork> TBasicNetwork::Clone() const {
  return std::make_unique<TBasicNetwork>(*this);
}

TBasicNetwork& TBasicNetwork::operator=(const TBasicNetwork& other) {
  Assign(other);
  return *this;
}

void TBasicNetwork::Assign(const TBasicNetwork& x) {
  Assert(NumLayers() == x.NumLayers(), "n_layers == x.n_layers");
  // Everything is copied before anything is replaced: memory may run out, and x may be *this.
  auto sources = x.sources_;
  std::vector<std::unique_ptr<TBasicLayer>> layers;
  for (const auto& layer : x.layers_) layers.push_back(layer->Clone());
  std::vector<std::unique_ptr<TBasicConnections>> blocks;
  for (const auto& block : x.blocks_) blocks.push_back(block->Clone());

  input_layer_ = x.input_layer_;
  output_layer_ = x.output_layer_;
  sources_ = std::move(sources);
  blocks_ = std::move(blocks);
  layers_ = std::move(layers);
  for (std::size_t i = 0; i < NumLayers(); ++i) layers_[i]->Attach(*this, i);
}

// --- Layers ----------------------------------------------------------------------------------

void TBasicNetwork::SetInputAndOutputLayer(std::size_t input_layer, std::size_t output_layer) {
  Assert(input_layer < NumLayers(), "inLayer<numLayers");
  Assert(output_layer < NumLayers(), "outLayer<numLayers");
  input_layer_ = input_layer;
  output_layer_ = output_layer;
}

void TBasicNetwork::SetLayer(std::size_t index, std::unique_ptr<TBasicLayer> layer) {
  Assert(layer != nullptr, "layer != NULL");
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    const bool is_free =
        !Connections(index, k).IsConnected() && !Connections(k, index).IsConnected();
    Assert(is_free, "!connected");
  }
  layers_[index] = std::move(layer);
  layers_[index]->Attach(*this, index);
}

int TBasicNetwork::GetNumNeurons() const {
  std::size_t sum = 0;
  for (const auto& layer : layers_) sum += layer->NumNeurons();
  return static_cast<int>(sum);
}

TBasicNeuron& TBasicNetwork::Neuron(int index) {
  Assert(index >= 0, "index>=0");
  Assert(index < GetNumNeurons(), "index<GetNumNeurons()");
  auto rest = static_cast<std::size_t>(index);
  auto layer = layers_.begin();
  for (; rest >= (*layer)->NumNeurons(); ++layer) rest -= (*layer)->NumNeurons();
  return (*layer)->Neuron(rest);
}

std::size_t TBasicNetwork::CheckedHiddenLayer(int layer_num) const {
  Assert(layer_num >= 0, "LayerNum>=0");
  const auto layer = static_cast<std::size_t>(layer_num);
  Assert(layer < NumLayers(), "LayerNum<numLayers");
  Assert(layer != input_layer_, "LayerNum!=inLayer");
  Assert(layer != output_layer_, "LayerNum!=outLayer");
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    const bool is_resizable =
        Connections(layer, k).IsResizable() && Connections(k, layer).IsResizable();
    Assert(is_resizable, "IsResizable()");
  }
  return layer;
}

void TBasicNetwork::AddNeuron(int layer_num, int node) {
  const std::size_t layer = CheckedHiddenLayer(layer_num);
  Assert(node >= 0, "node>=0");
  Assert(node <= GetNumNeurons(), "node<=GetNumNeurons()");
  // A neuron of a layer that is connected with itself has a connection with itself, too.
  std::uint64_t weights = NumPlaces() + (Connections(layer, layer).IsConnected() ? 1 : 0);
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    weights += Connections(k, layer).Rows() + Connections(layer, k).Columns();
  }
  CheckWeights(weights, "TBasicNetwork::AddNeuron");

  const auto position = static_cast<std::size_t>(node);
  layers_[layer]->AddNeuron(position);
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    Connections(k, layer).AddColumn(position);
    Connections(layer, k).AddRow(position);
  }
}

void TBasicNetwork::RemoveNeuron(int layer_num, int node) {
  const std::size_t layer = CheckedHiddenLayer(layer_num);
  Assert(node >= 0, "node>=0");
  Assert(node < GetNumNeurons(), "node<GetNumNeurons()");
  const auto position = static_cast<std::size_t>(node);
  layers_[layer]->RemoveNeuron(position);
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    Connections(k, layer).RemoveColumn(position);
    Connections(layer, k).RemoveRow(position);
  }
}

// --- Connections -----------------------------------------------------------------------------

void TBasicNetwork::RefuseLayer() const {
  throw TAssertion("index<numLayers", __FILE__, __LINE__);
}

void TBasicNetwork::SetConnections(std::size_t to, std::size_t from,
                                   std::unique_ptr<TBasicConnections> block) {
  Assert(block != nullptr, "conns != NULL");
  const TBasicLayer& to_layer = Layer(to);
  const TBasicLayer& from_layer = Layer(from);
  const std::uint64_t others = NumPlaces() - Connections(to, from).Weights().size();
  CheckWeights(others + block->SizeBetween(to_layer, from_layer), "TBasicNetwork::SetConnections");
  block->Attach(to_layer, from_layer);
  blocks_[Cell(to, from)] = std::move(block);

  sources_[to].clear();
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    if (Connections(to, k).IsConnected()) sources_[to].push_back(k);
  }
}

std::uint64_t TBasicNetwork::NumPlaces() const {
  std::uint64_t places = 0;
  for (const auto& block : blocks_) places += block->Weights().size();
  return places;
}

// --- Weights ---------------------------------------------------------------------------------

void TBasicNetwork::Iterate(TIterateObj& operation) {
  for (std::size_t from = 0; from < NumLayers(); ++from) {
    for (std::size_t to = 0; to < NumLayers(); ++to) Connections(to, from).Iterate(operation);
  }
}

void TBasicNetwork::Read(TIterateObjRead& operation) const {
  for (std::size_t from = 0; from < NumLayers(); ++from) {
    for (std::size_t to = 0; to < NumLayers(); ++to) Connections(to, from).Read(operation);
  }
}

std::size_t TBasicNetwork::GetNumWeights(TMask val) const {
  if (val == FMaskAll) return NumPlaces();
  TIterateObjGetNumWeights count(val);
  Read(count);
  return count.Count();
}

std::vector<double> TBasicNetwork::GetWeights(TMask val) const {
  std::vector<double> weights;
  TIterateObjGetWeights get(weights, val);
  Read(get);
  return weights;
}

void TBasicNetwork::SetWeights(std::span<const double> weights, TMask val) {
  Assert(weights.size() == GetNumWeights(val), "weights.size()==GetNumWeights(val)");
  TIterateObjSetWeights set(weights, val);
  Iterate(set);
}

void TBasicNetwork::Randomize(double lower, double upper) {
  TIterateObjRandomize randomize(lower, upper);
  Iterate(randomize);
}

void TBasicNetwork::PruneNode(std::size_t layer, std::size_t node) {
  TIterateObjPruneNode into(TIterateObjPruneNode::TSide::kInto, node);
  TIterateObjPruneNode out_of(TIterateObjPruneNode::TSide::kOutOf, node);
  for (std::size_t k = 0; k < NumLayers(); ++k) {
    Connections(layer, k).Iterate(into);
    Connections(k, layer).Iterate(out_of);
  }
}

}  // namespace kiln
