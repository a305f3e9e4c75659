#include "GA-Apps/GenTrain/TGenTrainReport.h"

#include "Bramble/Population.h"

namespace kiln {

bool TGenTrainReport::Report(const Population& evaluated) {
  MbrDblLastError = MbrEvlEvaluator.Lowest().DblError;
  const bool goes_on = !MbrFunObserver || MbrFunObserver(evaluated.Generation(), MbrDblLastError);
  return goes_on && evaluated.Statistics().FltMaximum > 0.0F;
}

}  // namespace kiln
