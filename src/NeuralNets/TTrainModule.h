#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TTrainRun.h"

namespace kiln {

class Data;
class TKQstructure;

// Called after each epoch with its number, from 0, and its error; false asks training to stop.
using TEpochObserver = std::function<bool(int epoch, double error)>;

// Gradient descent on the error of a network over a data set: the loop over epochs and patterns,
// the weight penalties and the updates. How one layer turns its error terms into gradients is what
// the derived trainers know.
//
// Parameters, by keyword, with their defaults:
//   LEARNINGRATE   r, the size of a step; 0 for the update, 1 as the scale of the penalty's
//   gradient MOMENTUM       m, the share of the last change in the next one; 0 selects the plain
//   update THRESHOLD      training ends after an epoch whose error is below it; 0, that is never
//   BATCH          TRUE for one update an epoch; else one a pattern
//   ERRORFUNCTION  MEANSQUAREDERROR (default) or CROSSENTROPY, in any case
//   WEIGHTPENALTY  a message headed NONE (default), QUADPENALTY or LWF; see TErrorObj::Penalty
//
// The trainer shares its network, whose structure must not change meanwhile, and keeps two copies
// of its shape: the last change of every weight, which lives on from one call to the next, and the
// gradient of every weight.
class TTrainModule {
 public:
  explicit TTrainModule(std::shared_ptr<TBasicNetwork> network);
  virtual ~TTrainModule() = default;
  TTrainModule(const TTrainModule&) = delete;
  TTrainModule& operator=(const TTrainModule&) = delete;

  const TBasicNetwork& Network() const { return *network_; }

  // Trains for `epochs` epochs and returns the error of the last one, 0 when there was none. When
  // THRESHOLD or the observer ends training early, `epochs` becomes the number, counted from 0, of
  // the last epoch that was run. A missing WEIGHTPENALTY is written back into `params` as NONE.
  // Throws TException when the columns of the set do not fit the network or a parameter is not a
  // number, TAssertion for unknown words and for activation functions that cannot be trained.
  virtual double Train(const Data& data, TKQstructure& params, int& epochs,
                       const TEpochObserver& observer = {});

  // One pass over the set; returns its error. As Train otherwise.
  double Epoch(const Data& data, TKQstructure& params);

 protected:
  // Turns the error terms of a layer (Errors) into the gradients of the connections from lower
  // layers, by TrainBlock, and adds what the layer passes back to the error terms of these layers.
  // The base does not know how: TAssertion.
  virtual void TrainLayer(const TTrainRun& run, std::size_t layer);

  // Checks before the first pattern that every layer can be trained.
  virtual void CheckLayers(const TTrainRun& run) const = 0;

  // Called after each change of the weights.
  virtual void WeightsChanged() {}

  // Whether the weight penalty acts on the block of a pair.
  virtual bool IsPenalised(std::size_t to, std::size_t from) const;

  // For a block whose net input is sum(weight * input): adds weight * delta to the errors of the
  // inputs, unless `errors` is empty, and handles the gradient delta * input as the run asks for:
  // adds it up, or changes the weight at once.
  void TrainBlock(const TTrainRun& run, std::size_t to, std::size_t from,
                  std::span<const double> deltas, std::span<const double> inputs,
                  std::span<double> errors);

  // The error term of each neuron of a layer during the training on a pattern.
  std::span<double> Errors(std::size_t layer) { return deltas_->Layer(layer).NetInputs(); }

  // The same where errors must be passed back to: empty for a layer below which nothing is trained.
  std::span<double> ErrorsWanted(std::size_t layer);

  TBasicNetwork& Network() { return *network_; }

 private:
  double RunEpoch(const Data& data, TTrainRun& run);
  void TrainPattern(TTrainRun& run, std::span<const double> input, std::span<const double> desired);
  void AddPenaltyGradient(const TTrainRun& run, double patterns, double all_patterns);
  void AddPenaltyToError(TTrainRun& run) const;
  void UpdateWeights(const TTrainRun& run);

  std::shared_ptr<TBasicNetwork> network_;
  std::unique_ptr<TBasicNetwork> previous_;  // the last change of every weight
  std::unique_ptr<TBasicNetwork> deltas_;    // gradients; the net inputs hold the error terms
};

}  // namespace kiln
