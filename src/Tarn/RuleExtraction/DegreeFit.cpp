#include "Tarn/RuleExtraction/DegreeFit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace kiln {

namespace {

// The steps of resilient back-propagation: each number has its own, which grows while its
// derivative keeps its sign and shrinks when that changes.
class TResilientSteps {
 public:
  explicit TResilientSteps(std::size_t count) : steps_(count, kFirst), last_(count) {}

  // The next change of number k.
  double Next(std::size_t k, double derivative) {
    const double agreement = derivative * last_[k];
    if (agreement > 0.0) steps_[k] = std::min(kLargest, kGrowth * steps_[k]);
    if (agreement < 0.0) {
      steps_[k] = std::max(kSmallest, kShrinkage * steps_[k]);
      derivative = 0.0;
    }
    last_[k] = derivative;
    return derivative > 0.0 ? -steps_[k] : derivative < 0.0 ? steps_[k] : 0.0;
  }

 private:
  static constexpr double kFirst = 0.1;
  static constexpr double kSmallest = 1e-6;
  static constexpr double kLargest = 0.5;
  static constexpr double kGrowth = 1.2;
  static constexpr double kShrinkage = 0.5;

  std::vector<double> steps_;
  std::vector<double> last_;  // derivatives
};

double Objective(const TRuleModel& model, const std::vector<double>& degrees) {
  double squares = 0.0;
  for (const double degree : degrees) squares += degree * degree;
  return model.Error() * model.Error() + kDegreePull * squares;
}

}  // namespace

void FitDegrees(TRuleModel& model, int steps, const TEpochObserver& observer) {
  std::vector<double> degrees = model.Degrees();
  std::vector<double> best = degrees;
  double least = Objective(model, degrees);
  TResilientSteps changes(degrees.size());
  for (int step = 0; step < steps; ++step) {
    const std::vector<double> gradient = model.Gradient();
    for (std::size_t k = 0; k < degrees.size(); ++k) {
      if (!(degrees[k] > 0.0)) continue;
      const double derivative = gradient[k] + 2.0 * kDegreePull * degrees[k];
      degrees[k] *= std::exp(changes.Next(k, derivative * degrees[k]));
    }
    model.SetDegrees(degrees);
    const double objective = Objective(model, degrees);
    if (objective < least) {
      least = objective;
      best = degrees;
    }
    if (!observer(step, model.Error())) break;
  }
  model.SetDegrees(best);
}

}  // namespace kiln
