#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "NeuralNets/TErrorObj.h"

namespace kiln {

class TKQstructure;

// The weight penalty of one training run.
struct TPenaltyTerm {
  enum class TKind { kNone, kQuadratic, kForgetting };

  TKind kind = TKind::kNone;
  double epsilon1 = 0.0;
  double epsilon2 = 0.0;
  double beta = 1.0;
  double forgetting_rate = 0.0;
  const TKQstructure* description = nullptr;  // in the caller's parameters

  bool IsActive() const { return kind != TKind::kNone; }
};

// What one call of a trainer works with, read from its parameters once: a model is not changed by
// how it is trained.
struct TTrainRun {
  // Reads the parameters (see TTrainModule) for patterns of `outputs` values.
  TTrainRun(TKQstructure& params, std::size_t outputs);

  double learning_rate;          // of the update
  double penalty_learning_rate;  // of the penalty's gradient
  double momentum;
  double threshold;
  bool batch;
  bool cross_entropy;
  TPenaltyTerm penalty;
  std::unique_ptr<TErrorObj> error;
  std::vector<double> output;  // of the pattern at hand

  // Whether each pattern changes the weights at once, gradient and update in one pass.
  bool AtOnce() const { return !batch && !penalty.IsActive(); }
};

}  // namespace kiln
