#pragma once

#include <span>

#include "NeuralNets/TIterateObj.h"

namespace kiln {

// One block of weighted sums during the training on a pattern.
struct TBlockTerms {
  std::span<const double> deltas;  // d, one a to-neuron: the derivative of the error by net input
  std::span<const double> inputs;  // x, one a from-neuron
  std::span<double> errors;        // e, one a from-neuron, or empty where nothing is passed back
};

// With w a weight, g its gradient and p its last change:

// On weights and gradients: e += w d, g += d x.
class TIterateObj2ErrorsAndDeltas : public TIterateObj2 {
 public:
  explicit TIterateObj2ErrorsAndDeltas(const TBlockTerms& terms) : terms_(terms) {}
  void Patch(const TWeightPatch& patch, double* gradients) override;

 private:
  TBlockTerms terms_;
};

// On weights and last changes, for training by pattern: e += w d, then the update, with momentum or
// plain, by the gradient d x at once.
class TIterateObj2Step : public TIterateObj2 {
 public:
  TIterateObj2Step(const TBlockTerms& terms, double learning_rate, double momentum)
      : terms_(terms), learning_rate_(learning_rate), momentum_(momentum) {}
  void Patch(const TWeightPatch& patch, double* changes) override;

 private:
  TBlockTerms terms_;
  double learning_rate_;
  double momentum_;
};

// On weights and gradients: g += (epsilon1 beta / (beta w^2 + 1)^2 + epsilon2) 2 w.
class TIterateObj2CalcPenaltyTerm : public TIterateObj2 {
 public:
  TIterateObj2CalcPenaltyTerm(double epsilon1, double epsilon2, double beta)
      : epsilon1_(epsilon1), epsilon2_(epsilon2), beta_(beta) {}
  void Connection(double& weight, double& gradient) override;

 private:
  double epsilon1_;
  double epsilon2_;
  double beta_;
};

// On weights and gradients: g += sign(w) f (f / r), which an update with the learning rate r turns
// into a step of f^2 towards 0. Nothing is added when r is 0.
class TIterateObjLWFCalcPenaltyTerm : public TIterateObj2 {
 public:
  TIterateObjLWFCalcPenaltyTerm(double forgetting_rate, double learning_rate);
  void Connection(double& weight, double& gradient) override;

 private:
  double term_;
};

// On weights and gradients: w -= r g.
class TIterateObj2Update : public TIterateObj2 {
 public:
  explicit TIterateObj2Update(double learning_rate) : learning_rate_(learning_rate) {}
  void Patch(const TWeightPatch& patch, double* gradients) override;

 private:
  double learning_rate_;
};

// On weights, gradients and last changes: p = m p - r g, w += p.
class TIterateObj3UpdateMomentum : public TIterateObj3 {
 public:
  TIterateObj3UpdateMomentum(double learning_rate, double momentum)
      : learning_rate_(learning_rate), momentum_(momentum) {}
  void Patch(const TWeightPatch& patch, double* gradients, double* changes) override;

 private:
  double learning_rate_;
  double momentum_;
};

}  // namespace kiln
