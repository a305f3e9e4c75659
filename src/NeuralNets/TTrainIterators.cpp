#include "NeuralNets/TTrainIterators.h"

#include "NeuralNets/Kernels.h"

namespace kiln {

namespace {

// The error terms that belong to the columns of a patch, or null where nothing is passed back.
double* ErrorsOf(const TBlockTerms& terms, const TWeightPatch& patch) {
  return terms.errors.empty() ? nullptr : terms.errors.data() + patch.from;
}

}  // namespace

void TIterateObj2ErrorsAndDeltas::Patch(const TWeightPatch& patch, double* gradients) {
  const TKernels& kernels = Kernels();
  const double* deltas = terms_.deltas.data() + patch.to;
  if (double* errors = ErrorsOf(terms_, patch)) {
    kernels.propagate(patch.weights, patch.masks, patch.rows, patch.columns, deltas, errors);
  }
  kernels.add_gradient(gradients, patch.rows, patch.columns, deltas,
                       terms_.inputs.data() + patch.from);
}

void TIterateObj2Step::Patch(const TWeightPatch& patch, double* changes) {
  const double* deltas = terms_.deltas.data() + patch.to;
  const double* inputs = terms_.inputs.data() + patch.from;
  double* errors = ErrorsOf(terms_, patch);
  if (momentum_ == 0.0) {
    Kernels().step(patch.weights, patch.masks, patch.rows, patch.columns, deltas, inputs, errors,
                   learning_rate_);
  } else {
    Kernels().step_momentum(patch.weights, patch.masks, patch.rows, patch.columns, deltas, inputs,
                            errors, changes, learning_rate_, momentum_);
  }
}

void TIterateObj2CalcPenaltyTerm::Connection(double& weight, double& gradient) {
  const double root = beta_ * weight * weight + 1.0;
  gradient += (epsilon1_ * beta_ / (root * root) + epsilon2_) * 2.0 * weight;
}

TIterateObjLWFCalcPenaltyTerm::TIterateObjLWFCalcPenaltyTerm(double forgetting_rate,
                                                             double learning_rate)
    : term_(learning_rate == 0.0 ? 0.0 : forgetting_rate * (forgetting_rate / learning_rate)) {}

void TIterateObjLWFCalcPenaltyTerm::Connection(double& weight, double& gradient) {
  if (weight < 0.0) gradient -= term_;
  if (weight > 0.0) gradient += term_;
}

void TIterateObj2Update::Patch(const TWeightPatch& patch, double* gradients) {
  Kernels().update(patch.weights, patch.masks, patch.Size(), gradients, learning_rate_);
}

void TIterateObj3UpdateMomentum::Patch(const TWeightPatch& patch, double* gradients,
                                       double* changes) {
  Kernels().update_momentum(patch.weights, patch.masks, patch.Size(), gradients, changes,
                            learning_rate_, momentum_);
}

}  // namespace kiln
