#include "NeuralNets/Training/TTrainIterators.h"

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
  Kernels().step(patch.weights, patch.masks, patch.rows, patch.columns, deltas, inputs, errors,
                 changes, rates_);
}

void TIterateObj2Update::Patch(const TWeightPatch& patch, double* gradients) {
  Kernels().update(patch.weights, patch.masks, patch.Size(), gradients, nullptr, rates_);
}

void TIterateObj3UpdateMomentum::Patch(const TWeightPatch& patch, double* gradients,
                                       double* changes) {
  Kernels().update(patch.weights, patch.masks, patch.Size(), gradients, changes, rates_);
}

}  // namespace kiln
