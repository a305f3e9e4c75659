#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "NeuralNets/TConnectedNetwork.h"

namespace kiln {

class TCentreConnections;

// The fuzzy network. Its layers, each connected with the one before it, read as rules:
//
//   0  empty
//   1  input      the values x
//   2  condition  the membership of each x in each term of its input ("x is small")
//   3  rule       sigmoid sums: how far the conditions of a rule are met
//   4  action     sigmoid sums: how far each term of each output is called for ("y is large")
//   5  output     the centre of gravity of the terms of each output
//
// The weights between layers 1 and 2, and between 4 and 5, are the centres of the terms'
// membership functions. Every connection can be frozen; those between 2, 3 and 4 can be pruned too.
class TTarn : public TConnectedNetwork {
 public:
  static constexpr std::size_t kInputLayer = 1;
  static constexpr std::size_t kConditionLayer = 2;
  static constexpr std::size_t kRuleLayer = 3;
  static constexpr std::size_t kActionLayer = 4;
  static constexpr std::size_t kOutputLayer = 5;

  // One number of terms for each input and each output. Centres are spread evenly over [0, 1], all
  // other weights are 0. Throws TException when a variable has fewer than 2 terms, there is no
  // input, output or rule, or the whole exceeds the limits of a network.
  TTarn(std::span<const int> input_mf, int rules, std::span<const int> output_mf);

  // Empty layers that are not connected, for a reader that fills them.
  TTarn();

  // Whether the layers, and the blocks that join them, are those of a Tarn. Everything below
  // REQUIRES it; only a reader can leave it otherwise.
  bool IsComplete() const;

  std::string_view KindName() const override { return "Tarn"; }
  std::unique_ptr<TBasicNetwork> Clone() const override;

  std::size_t NumRules() const { return Layer(kRuleLayer).NumNeurons(); }

  // The number of terms of each input and of each output.
  std::vector<int> InputMF() const;
  std::vector<int> OutputMF() const;

  // --- Weights -------------------------------------------------------------------------------
  // Weight layer k joins layer k with layer k+1, k = 1..4: `from` is a neuron of layer k, `to` one
  // of layer k+1. Each throws TException "Invalid weight layer" ("Bad Parameter") for another k,
  // and, unless said otherwise, "Invalid weight number" for a connection that does not exist.

  // The weight of a pruned connection can be read, as 0, but not set.
  double GetWeightValue(int weight_layer, int from, int to) const;
  void SetWeightValue(int weight_layer, int from, int to, double value);

  // Frozen weights stay as they are in any training.
  void FreezeWeight(int weight_layer, int from, int to);
  void UnfreezeWeight(int weight_layer, int from, int to);

  // Throws TException "Invalid node number" for a neuron that is negative or beyond the end of its
  // layer; the one just behind the last is no error, though nothing exists there.
  bool WeightExists(int weight_layer, int from, int to) const;

  // All weights of a layer, row by row (a row holds those into one neuron), pruned ones included.
  // Setting throws TException "Invalid number of weights" unless there are as many.
  std::vector<double> GetWeightLayer(int weight_layer) const;
  void SetWeightLayer(int weight_layer, std::span<const double> values);

  // Spreads all centres evenly over [0, 1] and draws the other weights from [minimum, maximum],
  // frozen or not. Throws TAssertion "Minimum <= Maximum".
  void InitWeights(double minimum, double maximum);

  // The centres that lead to kConditionLayer or kOutputLayer.
  TCentreConnections& Centres(std::size_t to);

  // --- Recall --------------------------------------------------------------------------------

  // What a neuron put out in the last recall. Throws TException "Invalid node layer" unless
  // 0 <= node_layer <= 5, "Invalid node number" when the layer has no such neuron.
  double GetActivationValue(int node_layer, int node) const;

  // As for every network, but a null set is a TException. Both recalls throw TAssertion when an
  // output leaves [0, 1], which takes an output term centred outside.
  std::unique_ptr<Data> Recall(const Data* in) override;

 private:
  // The block of a weight layer in which there must be a connection, for `function`.
  TBasicConnections& BlockWith(int weight_layer, int from, int to, const char* function);

  bool HasLayers() const;
  bool HasConnections() const;
};

}  // namespace kiln
