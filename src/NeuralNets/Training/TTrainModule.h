#pragma once

#include <memory>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/Training/TEpochObserver.h"
#include "NeuralNets/Training/TTrainHistory.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"
#include "NeuralNets/Training/TValidation.h"

namespace kiln {

class Data;
class TKQstructure;

// Gradient descent on the error of a network over a data set: the loop over epochs and updates,
// with the weight penalties. How the patterns of an epoch give gradients is up to the pass, which
// the derived trainer makes.
//
// Parameters, by keyword, with their defaults:
//   LEARNINGRATE   size of a step: 0 in updates, 1 in the gradient of a penalty
//   MOMENTUM       share of the last change in the next one: 0, the plain update
//   THRESHOLD      training ends after an epoch whose error is below it: 0, that is never
//   BATCH          TRUE for one update an epoch, a number for one after so many rows: else there is
//                  one a pattern. RPROP and LEVENBERG always make one an epoch
//   ERRORFUNCTION  MEANSQUAREDERROR or CROSSENTROPY: the first
//   METHOD         how gradients change weights: GRADIENT, RPROP, ADAM or LEVENBERG: the first (see
//                  TMethodSettings, also for the constants of the others)
//   WEIGHTPENALTY  message headed NONE, QUADPENALTY or LWF (see TErrorObj::Penalty): the first
// The words are read in any case.
//
// The trainer shares its network, whose structure must not change meanwhile, and keeps two numbers
// for each of its weights, with what the method remembers (see TTrainState). A call with another
// method than the one before begins without memory.
class TTrainModule {
 public:
  explicit TTrainModule(std::shared_ptr<TBasicNetwork> network);
  virtual ~TTrainModule() = default;
  TTrainModule(const TTrainModule&) = delete;
  TTrainModule& operator=(const TTrainModule&) = delete;

  const TBasicNetwork& Network() const { return *state_.network; }

  // The error of every epoch of all calls that have not failed.
  const TTrainHistory& History() const { return history_; }

  // Trains for `epochs` epochs and returns the error of the last one, 0 when there was none. When
  // THRESHOLD or the observer ends training early, `epochs` becomes the number, counted from 0, of
  // the last epoch that was run. A missing WEIGHTPENALTY is written back into `params` as NONE.
  //
  // With a validation set the network ends with the weights of the epoch that had the least error
  // on it, by the measure of the run without penalties, and that error is returned. Training ends
  // early when it has been so for as many epochs as the set has patience. Momentum, and what a
  // method remembers, is forgotten unless it was the last epoch.
  //
  // Throws TException when a set has no rows, its columns do not fit the network or a parameter
  // is not a number; TAssertion for unknown words and for activation functions that cannot be
  // trained. Training that fails half-way throws too: TException after an epoch whose error is no
  // finite number, or when a weight is none in the end; TAssertion when the output of a fuzzy
  // network leaves [0, 1]. Whatever is thrown, network and trainer are as they were before.
  double Train(const Data& data, TKQstructure& params, int& epochs,
               const TEpochObserver& observer = {}, const TValidationSet* validation_set = nullptr);

  // Trains for one epoch and returns its error. As Train otherwise.
  double Epoch(const Data& data, TKQstructure& params);

 protected:
  // Checks, before the first pattern, that every layer can be trained.
  virtual void CheckLayers(const TTrainRun& run) const;

  // A way through the patterns for a run whose layers have been checked; never null. Run and state
  // outlive it. The state is the trainer's, or that of a worker who adds gradients in a copy of the
  // network; workers may make theirs at the same time.
  virtual std::unique_ptr<TTrainPass> MakePass(TTrainState& state, const TTrainRun& run);

  // The pass of a run by levenberg, likewise.
  virtual std::unique_ptr<TTrainPass> MakeLevenbergPass(const TTrainRun& run);

  // Changes the weights by the gradients of the state, which are sums over `rows` rows of the set,
  // and those of the penalty, as the method of the run has it; `error` is that of these rows. A
  // trainer whose weights have to obey a rule overrides this, and sees to the rule before and
  // after.
  virtual void Update(const TTrainRun& run, int rows, const TErrorObj& error);

  TBasicNetwork& Network() { return *state_.network; }
  TTrainState& State() { return state_; }

 private:
  std::unique_ptr<TTrainPass> MakePassOfRun(const TTrainRun& run);
  void RunEpoch(const Data& data, const TTrainRun& run, TTrainPass& pass, TErrorObj& error);
  double RunEpochs(const Data& data, const TTrainRun& run, int& epochs,
                   const TEpochObserver& observer, TValidation* validation);
  void EndAtLeast(const TValidation& validation);
  void StartMethod(const TMethodSettings& method);
  void AddPenaltyGradients(const TTrainRun& run, double share);
  void AddPenaltyToError(const TPenaltyTerm& penalty, TErrorObj& error) const;
  double PriceOfPenalty(const TPenaltyTerm& penalty) const;
  void MoveWeights(const TRates& rates);
  template <typename TRule>
  void MoveWeightsBy(TRule& rule);

  TTrainState state_;
  TTrainHistory history_;
};

}  // namespace kiln
