#include "GA-Apps/GenTrain/TGenTrainReport.h"

#include "Bramble/Population.h"

namespace kiln {

bool TGenTrainReport::Report(const Population& evaluated) {
  MbrDblLastError = MbrEvlEvaluator.Lowest().DblError;
  const double validation = MbrPtrValidation ? Validate(evaluated) : TTrainHistory::kNone;
  MbrHistory.Add(MbrDblLastError, validation, MbrEvlEvaluator.AverageError());
  const bool goes_on = !MbrFunObserver || MbrFunObserver(evaluated.Generation(), MbrDblLastError);
  const bool has_patience = !MbrPtrValidation || MbrPtrValidation->HasPatience();
  return goes_on && has_patience && evaluated.Statistics().FltMaximum > 0.0F;
}

// The error of the best individual on the validation set.
double TGenTrainReport::Validate(const Population& evaluated) {
  MbrEvlEvaluator.SetGenes(evaluated.At(evaluated.Best().NdxPosition).Genes().Values());
  return MbrPtrValidation->Measure(MbrEvlEvaluator.Network());
}

}  // namespace kiln
