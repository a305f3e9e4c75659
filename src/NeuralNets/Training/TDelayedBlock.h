#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

class Data;

// A block of weights over the inputs of a network that is trained pattern by pattern, brought up to
// date after several patterns instead of after each. The inputs x_0, x_1, ... of the patterns to
// come are known; with r the rate, m the momentum, d_i the deltas of pattern i, and W and P the
// weights and last changes to begin with,
//
//   net_j = W x_j + a_j P x_j - r (sum over i < j of b_(j-i) (x_i . x_j) d_i)
//   W_n = W + a_n P - r (sum over i < n of b_(n-i) d_i x_i')
//   P_n = m^n P - r (sum over i < n of m^(n-1-i) d_i x_i')
//
// where a_j = m + m^2 + ... + m^j and b_j = 1 + m + ... + m^(j-1). Only the sum over i < j waits
// for one pattern after the other; the rest are products of matrices, which fetch a weight once for
// all patterns. Nothing changes but the order of sums.
class TDelayedBlock {
 public:
  static constexpr std::size_t kPatterns = 32;

  // Whether weights can be trained in this way on a set of so many patterns, and gain by it: patch
  // and set are large enough, all weights exist and are trainable, nothing pulls at them, and
  // |m| <= 1, so that its powers do not overflow.
  static bool Fits(const TWeightPatch& patch, const TRates& rates, int patterns);

  // The weights and their last changes outlive the block. REQUIRES: they fit.
  TDelayedBlock(const TWeightPatch& patch, double* changes, const TRates& rates);

  // Begins with the rows first..last-1 of a set. REQUIRES: at most kPatterns of them.
  void Begin(const Data& data, int first, int last);

  // For one of these rows after the other: adds its sums to the net inputs of the layer, then takes
  // the deltas of the layer.
  void Accumulate(std::span<double> net) const;
  void Step(std::span<const double> deltas);

  // Brings weights and last changes up to date with the steps since Begin.
  void End();

 private:
  using TShares = std::array<double, kPatterns + 1>;

  double* Pattern(std::size_t p) { return patterns_.data() + p * stride_; }
  void AddProducts(const TShares& shares, double* values);

  TWeightPatch patch_;
  double* changes_;
  TRates rates_;
  TShares powers_{};                   // m^j
  TShares change_shares_{};            // a_j
  TShares delta_shares_{};             // b_j
  std::size_t steps_ = 0;              // since Begin
  std::size_t stride_;                 // columns, in whole registers
  std::vector<double> patterns_;       // kPatterns x columns
  std::vector<double> inputs_;         // columns x kPatterns
  std::vector<double> products_;       // kPatterns x kPatterns: x_i . x_j
  std::vector<double> weight_sums_;    // rows x kPatterns: W x_j
  std::vector<double> change_sums_;    // rows x kPatterns: P x_j
  std::vector<double> deltas_;         // kPatterns x rows: d_i
  std::vector<double> shared_deltas_;  // the same, each pattern times its share
};

}  // namespace kiln
