#pragma once

#include <cstddef>
#include <memory>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/Training/TTrainMethod.h"
#include "NeuralNets/WeightPenalties.h"

namespace kiln {

class Data;
class TBasicNetwork;
class TKQstructure;

// The weight penalty of one training run, whose description TErrorObj::Penalty explains. With r the
// learning rate and f FORGETTINGRATE it is
//   quadratic   of r EPSILON1, r EPSILON2 and BETA
//   forgetting  of the factor f (f / r), or 0 when r is 0
// For methods other than the plain gradient, which have no such rate, r is 1.
struct TPenaltyTerm {
  enum class TKind { kNone, kQuadratic, kForgetting };

  // Throws TAssertion when the head of the description is unknown.
  TPenaltyTerm(const TKQstructure& message, double learning_rate);

  // The price of a weight, for the whole set, and its derivative. REQUIRES: there is a penalty.
  double Price(double weight) const;
  double Slope(double weight) const;

  // A number of the sign of the weight, half the square of which is the price, and its derivative.
  // REQUIRES: the kind is quadratic.
  double Residual(double weight) const;
  double ResidualSlope(double weight) const;

  const TKQstructure* description;  // in the parameters of the caller
  TKind kind;
  TQuadraticPenalty quadratic;
  TForgettingPenalty forgetting;
};

// The settings of one call of a trainer, read once.
struct TTrainRun {
  // Reads `params`, which outlive the run, as TTrainModule documents them. Throws as Train does.
  TTrainRun(TKQstructure& params, const Data& data);

  // The rates with which a pass changes weights at once where a penalty acts: those of the run, and
  // the pull of forgetting, which is its gradient times the learning rate.
  TRates ForgettingRates() const;

  // Whether the error terms of a layer are its deltas as they are: those of sigmoid outputs under
  // cross entropy.
  bool ErrorsAreDeltas(const TBasicNetwork& network, std::size_t layer) const;

  // What gradients are the derivatives of, before penalties: the sum of cross entropies, or half
  // that of squares.
  double PriceOf(const TErrorObj& error) const;

  // A new measure of the error of so many outputs.
  std::unique_ptr<TErrorObj> MakeError(std::size_t outputs) const;

  TRates rates;  // of the update by a gradient
  double threshold;
  bool cross_entropy;
  int patterns;  // rows of the data set
  TMethodSettings method;
  int batch;  // rows whose gradients make one update
  TPenaltyTerm penalty;
  bool at_once;  // a pass may change weights by the gradient of one pattern: no method, batch or
                 // penalty asks for the gradient itself
};

}  // namespace kiln
