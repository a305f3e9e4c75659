#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/Training/TTrainPass.h"

namespace kiln {

class Data;
class TBasicNetwork;
class TKQstructure;

// The weight penalty of one training run; see TErrorObj::Penalty. With w a weight, r the learning
// rate and k the part of the data set that a gradient stands for, its gradient is
//   quadratic   (e1 beta / (beta w^2 + 1)^2 + e2) 2 w, with e1 = k r EPSILON1 and e2 = k r EPSILON2
//   forgetting  sign(w) f (f / r), or nothing when r is 0
struct TPenaltyTerm {
  enum class TKind { kNone, kQuadratic, kForgetting };

  // Throws TAssertion when the head of the description is unknown.
  TPenaltyTerm(const TKQstructure& message, double learning_rate);

  const TKQstructure* description;  // in the parameters of the caller
  TKind kind;
  double epsilon1;    // r EPSILON1
  double epsilon2;    // r EPSILON2
  double beta;        // BETA
  double forgetting;  // f (f / r)
};

// What one call of a trainer works with: the settings, read once, and the buffers. How a network is
// trained leaves no trace in the network or its trainer but the weights.
struct TTrainRun {
  // Reads `params`, which outlive the run, as TTrainModule documents them.
  TTrainRun(TKQstructure& params, const Data& data);

  // Those of an update at once: `rates` with a pull, which is the forgetting term of the gradient
  // times the learning rate.
  TRates ForgettingRates() const;

  // Whether the error terms of a layer are its deltas as they are: those of sigmoid outputs under
  // cross entropy.
  bool ErrorsAreDeltas(const TBasicNetwork& network, std::size_t layer) const;

  TRates rates;  // of the update by a gradient
  double threshold;
  bool batch;
  bool cross_entropy;
  bool at_once = false;  // weights change in the pass that finds the gradient of a pattern
  int patterns;          // rows of the data set
  TPenaltyTerm penalty;
  std::vector<double> output;  // of the pattern at hand
  std::unique_ptr<TErrorObj> error;
  std::unique_ptr<TTrainPass> pass;  // null where the trainer has none for the network
};

}  // namespace kiln
