#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/Training/TTrainMethod.h"
#include "NeuralNets/Training/TWeightBuffer.h"
#include "Shared/TPlacedVector.h"

namespace kiln {

// What a trainer works on: the network, and a few numbers for each of its weights and neurons. It
// lives as long as the trainer, so that momentum goes on from one call to the next.
struct TTrainState {
  // The shape of the network must not change while the state lives.
  explicit TTrainState(std::shared_ptr<TBasicNetwork> trained);

  // The error terms of a layer for the pattern at hand, one a neuron: the derivative of the error
  // by the neuron's output, and after the layer's turn on the way back that by its net input. They
  // stand in a buffer with room for PaddedSize of them.
  std::span<double> Errors(std::size_t layer) {
    return {error_terms[layer].data(), network->Layer(layer).NumNeurons()};
  }

  // Errors(layer), for a layer that errors are passed back to: empty where the layer has no lower
  // sources, since nothing would use its error terms.
  std::span<double> ErrorsBelow(std::size_t layer) {
    return network->HasLowerSources(layer) ? Errors(layer) : std::span<double>();
  }

  // Calls visit(to, from) for each connected pair of layers, in the one order of weights.
  template <typename TVisit>
  void ForEachBlock(const TVisit& visit) const {
    for (std::size_t from = 0; from < network->NumLayers(); ++from) {
      for (std::size_t to = 0; to < network->NumLayers(); ++to) {
        if (network->Connections(to, from).IsConnected()) visit(to, from);
      }
    }
  }

  std::shared_ptr<TBasicNetwork> network;
  TWeightBuffer gradients;                       // of the error by each weight
  TWeightBuffer changes;                         // the last change of each weight
  TMethodMemory method;                          // what a method other than the gradient remembers
  std::vector<std::vector<double>> error_terms;  // of each layer
};

// The weights, and what updates remember of them, at one moment, to go back to when a training
// fails half-way.
class TTrainCheckpoint {
 public:
  explicit TTrainCheckpoint(const TTrainState& state);

  // Puts them back. REQUIRES: the state of the constructor.
  void Restore(TTrainState& state) const;

  // Whether each weight that was a finite number is one now. REQUIRES: the same.
  bool IsStillFinite(const TTrainState& state) const;

 private:
  std::vector<TPlacedVector<double>> weights_;  // of each block
  TWeightBuffer changes_;
  TMethodMemory method_;
};

}  // namespace kiln
