#pragma once

#include "NeuralNets/Training/TEpochObserver.h"
#include "Tarn/RuleExtraction/TRuleModel.h"

namespace kiln {

// Fits the degrees of rules to their task: as far as so many steps of resilient back-propagation on
// their logarithms go, they minimise
//   Error()^2 + kDegreePull sum(degree^2),
// whose second part keeps degrees of which more would hardly help at numbers that can be read.
// Degrees stay positive; one that is not stays as it is. The observer hears of each step, with
// Error(), and its false ends the fit. The best degrees met are those that stay.
void FitDegrees(TRuleModel& model, int steps, const TEpochObserver& observer);

inline constexpr double kDegreePull = 3e-5;

}  // namespace kiln
