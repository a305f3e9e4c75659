#pragma once

#include <memory>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/Training/TEpochObserver.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"

namespace kiln {

class Data;
class TKQstructure;

// Gradient descent on the error of a network over a data set: the loop over epochs and updates,
// with the weight penalties. How the patterns of an epoch give gradients is for the pass to know
// that a derived trainer makes.
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
// The trainer shares its network, whose structure must not change meanwhile, and keeps two numbers
// for each of its weights (see TTrainState).
class TTrainModule {
 public:
  explicit TTrainModule(std::shared_ptr<TBasicNetwork> network);
  virtual ~TTrainModule() = default;
  TTrainModule(const TTrainModule&) = delete;
  TTrainModule& operator=(const TTrainModule&) = delete;

  const TBasicNetwork& Network() const { return *state_.network; }

  // Trains for `epochs` epochs and returns the error of the last one, 0 when there was none. When
  // THRESHOLD or the observer ends training early, `epochs` becomes the number, counted from 0, of
  // the last epoch that was run. A missing WEIGHTPENALTY is written back into `params` as NONE.
  //
  // Throws TException when the set has no rows, its columns do not fit the network or a parameter
  // is not a number; TAssertion for unknown words and for activation functions that cannot be
  // trained. No weight has changed then.
  virtual double Train(const Data& data, TKQstructure& params, int& epochs,
                       const TEpochObserver& observer = {});

  // Trains for one epoch and returns its error. As Train otherwise.
  double Epoch(const Data& data, TKQstructure& params);

 protected:
  // Checks, before the first pattern, that every layer can be trained.
  virtual void CheckLayers(const TTrainRun& run) const;

  // A way through the patterns for a run whose layers have been checked; never null. Run and state
  // outlive it.
  virtual std::unique_ptr<TTrainPass> MakePass(const TTrainRun& run);

  // Changes the weights by the gradients of the state, which stand for the part `share` of the data
  // set, and those of the penalty. A trainer whose weights have to obey a rule overrides this, and
  // sees to the rule before and after.
  virtual void Update(const TTrainRun& run, double share);

  TBasicNetwork& Network() { return *state_.network; }
  TTrainState& State() { return state_; }

 private:
  void RunEpoch(const Data& data, const TTrainRun& run, TTrainPass& pass, TErrorObj& error);
  void AddPenaltyGradients(const TPenaltyTerm& penalty, double share);
  void AddPenaltyToError(const TPenaltyTerm& penalty, TErrorObj& error) const;
  void MoveWeights(const TRates& rates);

  TTrainState state_;
};

}  // namespace kiln
