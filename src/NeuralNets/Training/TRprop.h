#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "NeuralNets/Kernels/Connections.h"

namespace kiln {

// Resilient propagation with backing out of steps that raise the error (iRprop+). Each weight has a
// step size of its own, and only the sign of its gradient counts. With g the gradient and g' that
// of the update before:
//   g g' > 0   the step size grows, and the weight goes a step down the gradient
//   g g' < 0   the step size shrinks; where the error has risen as well, the weight takes its last
//              step back, otherwise it stays; then g counts as 0
//   g g' = 0   the weight goes a step down the gradient
// It takes gradients over the whole set: those of a part change their signs by chance.
class TRprop {
 public:
  struct TConstants {
    double first_step = 0.1;
    double largest_step = 50.0;
  };
  static constexpr double kGrowth = 1.2;
  static constexpr double kShrinkage = 0.5;
  static constexpr double kLeastStep = 1e-9;

  // For so many weights, all of them with the first step size.
  TRprop(std::size_t weights, const TConstants& constants);

  // Begins an update at weights of the given error. A later call may bring another largest step.
  void Begin(double error, const TConstants& constants);

  // Moves the weights of a patch, the first of which is number `first` of the network, by their
  // gradients; those that are absent or frozen stay.
  void Move(std::size_t first, const TWeightPatch& patch, const double* gradients);

 private:
  struct TWeight {
    double step = 0.0;
    double gradient = 0.0;  // g'
    double change = 0.0;    // what the last step added to the weight
  };

  void Move(TWeight& own, double gradient, double& weight) const;

  std::vector<TWeight> weights_;
  double largest_step_;
  double error_ = std::numeric_limits<double>::infinity();  // at the update before
  bool has_risen_ = false;
};

}  // namespace kiln
