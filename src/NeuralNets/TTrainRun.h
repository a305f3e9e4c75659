#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "NeuralNets/TErrorObj.h"

namespace kiln {

class TKQstructure;

// The weight penalty of one training run; see TErrorObj::Penalty.
struct TPenaltyTerm {
  enum class TKind { kNone, kQuadratic, kForgetting };

  // Throws TAssertion when the head of the description is unknown.
  explicit TPenaltyTerm(const TKQstructure& message);

  bool IsActive() const { return kind != TKind::kNone; }

  const TKQstructure* description;  // in the parameters of the caller
  TKind kind;
  double epsilon1;
  double epsilon2;
  double beta;
  double forgetting_rate;
};

// What one call of a trainer works with: the settings, read once, and the buffers. How a network is
// trained leaves no trace in the network or its trainer but the weights.
struct TTrainRun {
  // Reads `params`, which outlive the run, as TTrainModule documents them.
  TTrainRun(TKQstructure& params, std::size_t outputs);

  double learning_rate;          // of the update
  double penalty_learning_rate;  // of the penalty's gradient
  double momentum;
  double threshold;
  bool batch;
  bool cross_entropy;
  bool at_once =
      false;  // each pattern changes the weights in the same pass that finds the gradient
  TPenaltyTerm penalty;
  std::unique_ptr<TErrorObj> error;
  std::vector<double> output;  // of the pattern at hand
};

}  // namespace kiln
