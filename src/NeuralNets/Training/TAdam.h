#pragma once

#include <cstddef>
#include <vector>

#include "NeuralNets/Kernels/Connections.h"

namespace kiln {

// Adaptive moment estimation (Adam). With g the mean gradient of the rows of update t = 1, 2, ...,
//   m = b1 m + (1 - b1) g,  v = b2 v + (1 - b2) g^2,
//   w = w - rate (m / (1 - b1^t)) / (sqrt(v / (1 - b2^t)) + epsilon).
class TAdam {
 public:
  struct TConstants {
    double rate = 0.001;
    double beta1 = 0.9;
    double beta2 = 0.999;
    double epsilon = 1e-8;
  };

  // For so many weights; no update has been made yet.
  explicit TAdam(std::size_t weights) : means_(weights), squares_(weights) {}

  // Begins an update by gradients that are sums over so many rows.
  void Begin(int rows, const TConstants& constants);

  // Moves the weights of a patch, the first of which is number `first` of the network, by their
  // gradients; those that are absent or frozen stay.
  void Move(std::size_t first, const TWeightPatch& patch, const double* gradients);

 private:
  std::vector<double> means_;    // m
  std::vector<double> squares_;  // v
  double power1_ = 1.0;          // b1^t
  double power2_ = 1.0;          // b2^t
  TConstants constants_;         // of the update at hand, and what follows from them:
  double share_ = 1.0;           // of a row in the gradients
  double rate_ = 0.0;            // rate sqrt(1 - b2^t) / (1 - b1^t)
  double epsilon_ = 0.0;         // epsilon sqrt(1 - b2^t)
};

}  // namespace kiln
