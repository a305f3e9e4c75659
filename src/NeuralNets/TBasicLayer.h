#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "NeuralNets/TBasicNeuron.h"

namespace kiln {

class TBasicNetwork;

// How the values of a layer for several patterns stand: a row of `stride` places for each neuron,
// of which the first `count` hold values; there is room for PaddedSize of them.
struct TBlockShape {
  std::size_t stride;
  std::size_t count;
};

// A layer of neurons with one row of net inputs and one row of outputs, both contiguous. The
// outputs keep the values of the last recall. Kinds of layers differ in how they compute their
// outputs and in which neurons they hold.
//
// A layer belongs to a network, which owns it, once SetLayer of the network has taken it.
class TBasicLayer {
 public:
  static constexpr std::size_t kMaxNeurons = std::size_t{1} << 24;

  virtual ~TBasicLayer() = default;
  TBasicLayer& operator=(const TBasicLayer&) = delete;

  // Passes each neuron's net input through its activation function into its output.
  // Throws TAssertion for a neuron whose function was never set.
  virtual void Activate();

  // Computes the outputs, given the outputs of the other layers and, for the input layer, the
  // pattern. REQUIRES: in a network; the input layer has a neuron for each value of `pattern`.
  virtual void Compute(std::span<const double> pattern) = 0;

  // Whether ComputeBlock computes what Compute does: only in layers that compute something else
  // than activation functions of weighted sums, and then where they are connected as they should
  // be.
  virtual bool ComputesBlocks() const { return false; }

  // Computes the outputs for several patterns, given those of the one layer that leads here; those
  // that the layer keeps are left alone. Throws as Compute does, for the first pattern that makes
  // it. REQUIRES: ComputesBlocks(), and values of this shape.
  virtual void ComputeBlock(std::span<const double> inputs, std::span<double> outputs,
                            const TBlockShape& shape);

  virtual std::string_view KindName() const { return "Basic"; }

  // An equal layer, down to its outputs, that belongs to no network yet.
  virtual std::unique_ptr<TBasicLayer> Clone() const = 0;

  // Puts the layer at `index` of `network`, which outlives it.
  void Attach(TBasicNetwork& network, std::size_t index);
  std::size_t Index() const { return index_; }

  std::size_t NumNeurons() const { return neurons_.size(); }

  // REQUIRES: index < NumNeurons().
  TBasicNeuron& Neuron(std::size_t index) { return *neurons_[index]; }
  const TBasicNeuron& Neuron(std::size_t index) const { return *neurons_[index]; }

  // One value a neuron, at the start of buffers that have room for PaddedSize of them.
  std::span<double> NetInputs() { return {net_inputs_.data(), NumNeurons()}; }
  std::span<const double> NetInputs() const { return {net_inputs_.data(), NumNeurons()}; }
  std::span<double> Outputs() { return {outputs_.data(), NumNeurons()}; }
  std::span<const double> Outputs() const { return {outputs_.data(), NumNeurons()}; }

  // Sets the function of every neuron, those that are added later included.
  void SetActivation(TActFunction function);

  // The function that all neurons share: null when two differ, "null" in a layer without neurons.
  TActFunction GetActivation() const;

  // Whether there are neurons and all of them have the function "bias".
  bool IsBias() const;

  // The row form of the function that was set for all neurons; null when there is none.
  TActRowFunction RowForm() const { return row_form_; }

  // Inserts a neuron in front of the one at `node`, or takes the one at `node` out. The network
  // sees to its blocks itself. Throw TAssertion for a position that the layer does not have.
  void AddNeuron(std::size_t node);
  void RemoveNeuron(std::size_t node);

 protected:
  // Makes `neurons` copies of `prototype`; neurons that are added later are copies of it too.
  // Throws TException when there are more than kMaxNeurons.
  TBasicLayer(std::size_t neurons, const TBasicNeuron& prototype);
  TBasicLayer(const TBasicLayer& other);

  TBasicNetwork& Network() const { return *network_; }
  bool IsInputLayer() const;

 private:
  friend class TBasicNeuron;  // tells the layer when a neuron gets a function of its own

  void ForgetCommonActivation();
  void AttachNeurons();

  TBasicNetwork* network_ = nullptr;
  std::size_t index_ = 0;
  std::unique_ptr<TBasicNeuron> prototype_;
  std::vector<std::unique_ptr<TBasicNeuron>> neurons_;
  std::vector<double> net_inputs_;
  std::vector<double> outputs_;
  TActFunction function_ = nullptr;  // the one that was set for all, null when there is none
  TActRowFunction row_form_ = nullptr;
};

}  // namespace kiln
