#include "Tarn/RuleExtraction/RuleSimplification.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "Shared/TException.h"
#include "Tarn/RuleExtraction/DegreeFit.h"
#include "Tarn/RuleExtraction/TRuleModel.h"

namespace kiln {

namespace {

void Check(bool holds, const std::string& message) {
  if (!holds) throw TException(message, "Invalid Parameter", "TNetRule::RETarn");
}

void CheckOptions(const TTarn& terms, const TSimplification& options) {
  terms.CheckFits(options.data, "TNetRule::RETarn");
  Check(options.data.DataRows() > 0, "the data set has no rows");
  Check(options.tolerance >= 0.0 && std::isfinite(options.tolerance),
        "tolerance must be a number of at least 0");
  Check(options.rounds >= 1, "rounds must be at least 1");
}

// Takes parts out of rules while that costs little.
class TPruning {
 public:
  // REQUIRES: the model outlives the object.
  TPruning(TRuleModel& model, double tolerance, double error_of_means)
      : model_(model),
        tolerance_(tolerance),
        error_of_means_(error_of_means),
        lowest_(model.Error()) {}

  // Takes one part out; false when every one costs too much.
  bool Step() {
    lowest_ = std::min(lowest_, model_.Error());
    const std::vector<TRuleModel::TPart> parts = model_.Parts();
    const std::vector<double> errors = ErrorsWithout(parts);
    const auto least = std::ranges::min_element(errors);
    if (least == errors.end() || !(*least <= Limit(*least))) return false;
    model_.Remove(parts[static_cast<std::size_t>(least - errors.begin())]);
    return true;
  }

 private:
  // The error of each part is a piece of work of its own.
  std::vector<double> ErrorsWithout(const std::vector<TRuleModel::TPart>& parts) const {
    std::vector<double> errors(parts.size());
    std::ranges::transform(parts, errors.begin(), [this](const TRuleModel::TPart& part) {
      return model_.ErrorWithout(part);
    });
    return errors;
  }

  // What the error may become, once `error` counts among those seen.
  double Limit(double error) const {
    const double lowest = std::min(lowest_, error);
    return lowest + tolerance_ * std::max(0.0, error_of_means_ - lowest);
  }

  TRuleModel& model_;
  double tolerance_;
  double error_of_means_;
  double lowest_;
};

// Counts the steps of the whole work for an observer, and remembers that one asked for its end.
class TProgress {
 public:
  explicit TProgress(const TEpochObserver& observer) : observer_(observer) {}

  // Whether the work goes on.
  bool Report(double error) {
    if (goes_on_ && observer_) goes_on_ = observer_(steps_++, error);
    return goes_on_;
  }
  bool GoesOn() const { return goes_on_; }

 private:
  const TEpochObserver& observer_;
  int steps_ = 0;
  bool goes_on_ = true;
};

}  // namespace

TFlatRules Simplified(TFlatRules rules, const TTarn& terms, const TSimplification& options) {
  CheckOptions(terms, options);
  if (rules.empty()) return rules;
  const TRuleTask task(terms, options.data, rules);
  TRuleModel model(task, std::move(rules));
  TPruning pruning(model, options.tolerance, task.ErrorOfMeans());
  TProgress progress(options.observer);
  bool has_changed = true;
  for (int round = 0; round < options.rounds && has_changed && progress.GoesOn(); ++round) {
    has_changed = round == 0;
    while (progress.GoesOn() && pruning.Step()) {
      has_changed = true;
      progress.Report(model.Error());
    }
    if (!options.fit || !has_changed || !progress.GoesOn()) continue;
    FitDegrees(model, [&](int, double error) { return progress.Report(error); });
  }
  return model.Rules();
}

}  // namespace kiln
