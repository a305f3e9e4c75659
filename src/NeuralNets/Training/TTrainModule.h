#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/Training/TEpochObserver.h"
#include "NeuralNets/Training/TTrainIterators.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

class Data;
struct DataRow;
class TKQstructure;

// Gradient descent on the error of a network over a data set: the loop over epochs and patterns,
// the weight penalties and the updates. How one layer turns its error terms into gradients is what
// the derived trainers know.
//
// Parameters, by keyword, with their defaults:
//   LEARNINGRATE   size of a step: 0 in updates, 1 in the gradient of a penalty
//   MOMENTUM       share of the last change in the next one: 0, the plain update
//   THRESHOLD      training ends after an epoch whose error is below it: 0, that is never
//   BATCH          TRUE for one update an epoch: else there is one a pattern
//   ERRORFUNCTION  MEANSQUAREDERROR or CROSSENTROPY: the first
//   WEIGHTPENALTY  message headed NONE, QUADPENALTY or LWF (see TErrorObj::Penalty): the first
// The words are read in any case.
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
  //
  // Throws TException when the set has no rows, its columns do not fit the network or a parameter
  // is not a number; TAssertion for unknown words and for activation functions that cannot be
  // trained. No weight has changed then.
  virtual double Train(const Data& data, TKQstructure& params, int& epochs,
                       const TEpochObserver& observer = {});

  // One pass over the set; returns its error. As Train otherwise.
  double Epoch(const Data& data, TKQstructure& params);

 protected:
  // Checks, before the first pattern, that every layer can be trained.
  virtual void CheckLayers(const TTrainRun& run) const;

  // Turns the error terms of a layer into the gradients of its connections from lower layers, by
  // TrainBlock, and adds what it passes back to the error terms of these layers. The outputs of the
  // network's layers are those of the pattern at hand.
  virtual void TrainLayer(const TTrainRun& run, std::size_t layer);

  // A way through the patterns for a run whose layers have been checked, or null: pattern by
  // pattern then, by TrainLayer. A pass does not call WeightsChanged.
  virtual std::unique_ptr<TTrainPass> MakePass(const TTrainRun& run);

  // Called after each update of the weights.
  virtual void WeightsChanged() {}

  // Whether the weight penalty acts on the block of a pair.
  virtual bool IsPenalised(std::size_t to, std::size_t from) const;

  // Passes error terms back through the weights of a block, and handles its gradient as the run
  // asks for: adds it up, or changes the weights at once.
  void TrainBlock(const TTrainRun& run, std::size_t to, std::size_t from, const TBlockTerms& terms);

  // The error term of each neuron of a layer for the pattern at hand.
  std::span<double> Errors(std::size_t layer) { return deltas_->Layer(layer).NetInputs(); }

  // The same for a layer to pass errors back to; empty where nothing below is trained.
  std::span<double> ErrorsBelow(std::size_t layer);

  TBasicNetwork& Network() { return *network_; }

  // A network of the same shape whose weights are the gradients.
  TBasicNetwork& Gradients() { return *deltas_; }

  // The last change of every weight, as the weights of a network of the same shape.
  TBasicNetwork& Changes() { return *changes_; }

 private:
  TTrainRun StartRun(const Data& data, TKQstructure& params);
  double RunEpoch(const Data& data, TTrainRun& run);
  void RunBatch(const Data& data, TTrainRun& run);
  void RunPatterns(const Data& data, TTrainRun& run);
  void TrainPattern(TTrainRun& run, const DataRow& row);
  void AddPenaltyGradient(const TTrainRun& run, double share);
  void AddPenaltyToError(TTrainRun& run);
  void UpdateWeights(const TTrainRun& run);
  bool IsFeedForward() const;

  // Visit every block, or those that the penalty of the run acts on, in the one order.
  template <typename TVisit>
  void ForEachBlock(const TVisit& visit);
  template <typename TVisit>
  void ForEachPenalised(const TTrainRun& run, const TVisit& visit);

  std::shared_ptr<TBasicNetwork> network_;
  std::unique_ptr<TBasicNetwork> changes_;  // the last change of every weight
  std::unique_ptr<TBasicNetwork> deltas_;   // gradients; the net inputs hold the error terms
};

}  // namespace kiln
