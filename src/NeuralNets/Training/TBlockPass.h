#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/TPatternBlock.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"
#include "Shared/TPlacedVector.h"

namespace kiln {

// Back-propagation of several patterns at a time: what TLayerwisePass does for each pattern of a
// batch, as products of matrices (see TPatternBlock). As it stands it trains layers of weighted
// sums; a network with other layers derives a pass of its own, which overrides TrainLayer for them.
class TBlockPass : public TTrainPass {
 public:
  // Whether a network can be trained in this way (see TPatternBlock), and gains by it: batches have
  // at least kMinPatterns.
  static constexpr int kMinPatterns = 4;  // fewer leave most of the registers empty
  static bool Fits(const TBasicNetwork& network, const TTrainRun& run);

  // Adds gradients. REQUIRES: the network fits; state and run outlive the pass.
  TBlockPass(TTrainState& state, const TTrainRun& run);

  void Run(const Data& data, int first, int last, TErrorObj& error) override;

 protected:
  // Turns the error terms of a layer into deltas, adds up the gradients of its weights, and adds to
  // the error terms of the layers below. REQUIRES: a layer that is trained.
  virtual void TrainLayer(std::size_t layer);

  TTrainState& State() { return state_; }
  TPatternBlock& Outputs() { return outputs_; }

  // The error terms of a layer that is trained, in the shape of its outputs; 0 behind the last
  // pattern.
  std::span<double> Errors(std::size_t layer) { return errors_[layer]; }

 private:
  // Takes rows first..last-1, or as many of them as a block takes.
  void RunBlock(const Data& data, int first, int last, TErrorObj& error);
  void StartErrors(const Data& data, int first, TErrorObj& error);
  void AddGradients(std::size_t to, std::size_t from);
  void Propagate(std::size_t to, std::size_t from);

  TTrainState& state_;
  const TTrainRun& run_;
  TBasicNetwork& network_;
  TPatternBlock outputs_;
  std::vector<TPlacedVector<double>> errors_;  // neurons x patterns of each layer that is trained
  TPlacedVector<double> rows_;                 // outputs of a layer, patterns x neurons
  std::vector<double> output_;                 // of the pattern at hand
};

}  // namespace kiln
