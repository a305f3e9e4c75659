#pragma once

#include <span>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TIterateObj.h"
#include "NeuralNets/WeightPenalties.h"

namespace kiln {

// One block of weighted sums during the training on a pattern.
struct TBlockTerms {
  std::span<const double> deltas;  // d, one a to-neuron: the derivative of the error by net input
  std::span<const double> inputs;  // x, one a from-neuron
  std::span<double> errors;        // e, one a from-neuron, or empty where nothing is passed back
};

// In the formulas below w is a weight, g its gradient and p its last change. What an object is
// given by reference outlives the object.

// On weights and gradients: e += w d, g += d x.
class TIterateObj2ErrorsAndDeltas : public TIterateObj2 {
 public:
  explicit TIterateObj2ErrorsAndDeltas(const TBlockTerms& terms) : terms_(terms) {}
  void Patch(const TWeightPatch& patch, double* gradients) override;

 private:
  const TBlockTerms& terms_;
};

// On weights and last changes, for training by pattern: e += w d, then the update by the gradient
// d x at once.
class TIterateObj2Step : public TIterateObj2 {
 public:
  TIterateObj2Step(const TBlockTerms& terms, const TRates& rates) : terms_(terms), rates_(rates) {}
  void Patch(const TWeightPatch& patch, double* changes) override;

 private:
  const TBlockTerms& terms_;
  const TRates& rates_;
};

// On weights and gradients: g += the slope of a penalty (see WeightPenalties.h).
template <typename TPenalty>
class TIterateObj2PenaltySlope : public TIterateObj2 {
 public:
  explicit TIterateObj2PenaltySlope(const TPenalty& penalty) : penalty_(penalty) {}
  void Patch(const TWeightPatch& patch, double* gradients) override {
    for (std::size_t i = 0; i < patch.Size(); ++i) gradients[i] += penalty_.Slope(patch.weights[i]);
  }

 private:
  TPenalty penalty_;
};

using TIterateObj2CalcPenaltyTerm = TIterateObj2PenaltySlope<TQuadraticPenalty>;
using TIterateObjLWFCalcPenaltyTerm = TIterateObj2PenaltySlope<TForgettingPenalty>;

// On weights and gradients: w -= r g.
class TIterateObj2Update : public TIterateObj2 {
 public:
  // REQUIRES: rates without momentum.
  explicit TIterateObj2Update(const TRates& rates) : rates_(rates) {}
  void Patch(const TWeightPatch& patch, double* gradients) override;

 private:
  const TRates& rates_;
};

// On weights, gradients and last changes: p = m p - r g, w += p.
class TIterateObj3UpdateMomentum : public TIterateObj3 {
 public:
  explicit TIterateObj3UpdateMomentum(const TRates& rates) : rates_(rates) {}
  void Patch(const TWeightPatch& patch, double* gradients, double* changes) override;

 private:
  const TRates& rates_;
};

}  // namespace kiln
