#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "NeuralNets/TBasicConnections.h"
#include "NeuralNets/TBasicLayer.h"

namespace kiln {

class Data;
class TErrorObj;

// The skeleton of every network: layers in the order of recall, one of them the input and one the
// output, and a block of connections for every ordered pair of layers.
//
// Recall is one pass over the layers in index order. A block from the same or a later layer reads
// the outputs of the recall before, so that a network with such blocks has a memory of one step,
// which carries over from pattern to pattern and from call to call.
//
// Whatever exchanges weights as a flat vector uses one order: from-layers outside, to-layers
// inside, each block row by row.
class TBasicNetwork {
 public:
  static constexpr std::size_t kMaxLayers = 512;
  static constexpr std::uint64_t kMaxWeights = std::uint64_t{1} << 30;

  // A network of empty simple layers without connections, layer 1 its input and the last one its
  // output (layer 0 where there is but one).
  // Throws TException unless 1 <= layers <= kMaxLayers.
  explicit TBasicNetwork(int layers);
  TBasicNetwork(const TBasicNetwork& other);
  virtual ~TBasicNetwork() = default;

  virtual std::string_view KindName() const { return "Basic"; }

  // An equal network of the same kind, down to the outputs of the last recall.
  virtual std::unique_ptr<TBasicNetwork> Clone() const;

  // --- Layers --------------------------------------------------------------------------------

  std::size_t NumLayers() const { return layers_.size(); }
  std::size_t InputLayer() const { return input_layer_; }
  std::size_t OutputLayer() const { return output_layer_; }

  // Throws TAssertion when there is no such layer.
  void SetInputAndOutputLayer(std::size_t input_layer, std::size_t output_layer);

  // Throw TAssertion when there is no such layer.
  TBasicLayer& Layer(std::size_t index) { return *layers_[CheckedLayer(index)]; }
  const TBasicLayer& Layer(std::size_t index) const { return *layers_[CheckedLayer(index)]; }

  // Puts another layer at `index`. Throws TAssertion when the present one is connected.
  void SetLayer(std::size_t index, std::unique_ptr<TBasicLayer> layer);

  // How many values a pattern has, and how many a recall gives.
  std::size_t NumInputs() const { return layers_[input_layer_]->NumNeurons(); }
  virtual std::size_t NumOutputs() const { return layers_[output_layer_]->NumNeurons(); }

  // Neurons by network-wide index: those of layer 0 first, then those of layer 1, and so on.
  // Throws TAssertion for an index outside 0..GetNumNeurons()-1.
  int GetNumNeurons() const;
  TBasicNeuron& Neuron(int index);

  // Inserts a neuron into a layer, or takes one out, and the connections with it; new connections
  // weigh 0. Throw TAssertion for the input or output layer, for a layer that is joined by a block
  // of fixed size, and for positions that do not exist.
  void AddNeuron(int layer_num, int node);
  void RemoveNeuron(int layer_num, int node);

  // --- Connections ---------------------------------------------------------------------------

  // The block of a pair, which is an empty one where the layers are not connected.
  // Throw TAssertion when there is no such pair.
  TBasicConnections& Connections(std::size_t to, std::size_t from) {
    return *blocks_[Cell(to, from)];
  }
  const TBasicConnections& Connections(std::size_t to, std::size_t from) const {
    return *blocks_[Cell(to, from)];
  }

  // Puts a block in place of the present one and attaches it. Throws TException when the network
  // would have more than kMaxWeights weights.
  void SetConnections(std::size_t to, std::size_t from, std::unique_ptr<TBasicConnections> block);

  // The layers that are connected to layer `to`, in ascending order. REQUIRES: there is such a
  // layer.
  std::span<const std::size_t> Sources(std::size_t to) const { return sources_[to]; }

  // Whether an earlier layer is connected to layer `to`. Connections from earlier layers are the
  // ones that training gives gradients. REQUIRES: there is such a layer.
  bool HasLowerSources(std::size_t to) const {
    return !sources_[to].empty() && sources_[to].front() < to;
  }

  // Apply an operation to every connection in the one order of weights.
  void Iterate(TIterateObj& operation);
  void Read(TIterateObjRead& operation) const;

  // Number and values of the weights that `val` selects (see CheckSelector).
  std::size_t GetNumWeights(TMask val) const;
  std::vector<double> GetWeights(TMask val) const;

  // Throws TAssertion unless there is a value for each weight.
  void SetWeights(std::span<const double> weights, TMask val);

  // Draws every weight from [lower, upper].
  void Randomize(double lower, double upper);

  // Removes every connection into and out of a neuron, which stays where it is. Throws TAssertion
  // when there is no such layer, or for connections that cannot be removed.
  void PruneNode(std::size_t layer, std::size_t node);

  // Replaces the weights, flags, functions, neuron settings and outputs by those of a network of
  // the same shape. Throws TAssertion when the number of layers differs.
  void Assign(const TBasicNetwork& x);

  // --- Recall --------------------------------------------------------------------------------

  // REQUIRES: NumInputs() values in, NumOutputs() values out.
  virtual void RecallPattern(std::span<const double> input, std::span<double> output);

  // Whether a data set can be recalled by TPatternBlock in place of RecallPattern.
  virtual bool RecallsInBlocks() const { return false; }

  // The rows (input, output) for every row of a set, or the outputs alone, oldest row first.
  // Throw TException when the set's inputs do not fit the network's. A null set is a TAssertion in
  // the first and a TException in the second, unless a kind of network says otherwise.
  virtual std::unique_ptr<Data> Recall(const Data* in);
  virtual std::unique_ptr<Data> RecallOutputOnly(const Data* in);

  // Feeds (desired, recalled) of every row to the error object and returns its value. Neither may
  // be null (TAssertion). Throws TException when the columns of the set do not fit.
  virtual double RecallError(const Data* in, TErrorObj* err);

  // Throw TException, in the name of `function`, unless the set has a column for each input, or for
  // each input and each output.
  void CheckInputsFit(const Data& data, const char* function) const;
  void CheckFits(const Data& data, const char* function) const;

 protected:
  TBasicNetwork& operator=(const TBasicNetwork& other);

 private:
  std::size_t CheckedLayer(std::size_t index) const {
    if (index >= NumLayers()) RefuseLayer();
    return index;
  }
  std::size_t Cell(std::size_t to, std::size_t from) const {
    return CheckedLayer(to) * NumLayers() + CheckedLayer(from);
  }
  [[noreturn]] void RefuseLayer() const;
  std::uint64_t NumPlaces() const;
  std::size_t CheckedHiddenLayer(int layer_num) const;

  std::size_t input_layer_ = 0;
  std::size_t output_layer_ = 0;
  std::vector<std::unique_ptr<TBasicLayer>> layers_;
  std::vector<std::unique_ptr<TBasicConnections>> blocks_;  // of each pair, at Cell(to, from)
  std::vector<std::vector<std::size_t>> sources_;           // connected from-layers of each layer
};

}  // namespace kiln
