#include "Tarn/RuleExtraction/RuleSimplification.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <string>
#include <utility>

#include "Shared/TException.h"
#include "Shared/TTeam.h"
#include "Tarn/RuleExtraction/DegreeFit.h"
#include "Tarn/RuleExtraction/TRuleModel.h"

namespace kiln {

namespace {

[[noreturn]] void Fail(const std::string& message) {
  throw TException(message, "Invalid Parameter", "TNetRule::RETarn");
}

void Check(bool holds, const char* message) {
  if (!holds) Fail(message);
}

void CheckFinite(std::span<const double> values, int row, const char* side) {
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (std::isfinite(values[k])) continue;
    Fail("row " + std::to_string(row + 1) + ", column " + std::to_string(k + 1) + " of the " +
         side + " is not a finite number");
  }
}

void CheckOptions(const TTarn& terms, const TSimplification& options) {
  terms.CheckFits(options.data, "TNetRule::RETarn");
  Check(options.data.DataRows() > 0, "the data set has no rows");
  for (int n = 0; n < options.data.DataRows(); ++n) {
    CheckFinite(options.data.Row(n).Inputs, n, "inputs");
    CheckFinite(options.data.Row(n).Outputs, n, "outputs");
  }
  Check(options.tolerance >= 0.0 && std::isfinite(options.tolerance),
        "tolerance must be a number of at least 0");
  Check(options.rounds >= 1, "rounds must be at least 1");
  Check(options.atoms >= 0, "atoms must be at least 0");
}

// Takes parts out of rules, the one that is missed least first.
class TPruning {
 public:
  // REQUIRES: the model outlives the object.
  TPruning(TRuleModel& model, const TRuleTask& task, const TSimplification& options)
      : model_(model),
        rows_(options.data.DataRows()),
        tolerance_(options.tolerance),
        error_of_means_(task.ErrorOfMeans()) {}

  // Takes one part out; false when every one costs more than is tolerated.
  bool Tolerated() {
    lowest_ = std::min(lowest_, model_.Error());
    const auto [part, error] = LeastMissed(model_.Parts());
    if (!(error <= Limit(error))) return false;
    model_.Remove(part);
    return true;
  }

  // Takes a condition out of a rule that has more than so many; false when none has.
  bool Above(std::size_t conditions) {
    std::vector<TRuleModel::TPart> parts = model_.Parts();
    std::erase_if(parts, [&](const TRuleModel::TPart& part) {
      return part.kind != TRuleModel::TPart::kCondition ||
             model_.Rules()[part.rule].conditions.size() <= conditions;
    });
    if (parts.empty()) return false;
    model_.Remove(LeastMissed(parts).part);
    return true;
  }

 private:
  struct TTrial {
    TRuleModel::TPart part;
    double error;  // without the part; infinite when there is no part at all
  };

  // The first of equals. The error of each part is a piece of work of its own.
  TTrial LeastMissed(const std::vector<TRuleModel::TPart>& parts) const {
    std::vector<double> errors(parts.size());
    const double operations = 50.0 * rows_;  // two sigmoids and a few sums for each
    const std::size_t workers = TTeam::WorkersFor(parts.size(), operations);
    TTeam::Collect<double>(errors, operations, workers, [&](std::size_t part, std::size_t) {
      return model_.ErrorWithout(parts[part]);
    });
    const auto least = std::ranges::min_element(errors);
    if (least == errors.end()) return {{}, std::numeric_limits<double>::infinity()};
    return {parts[static_cast<std::size_t>(least - errors.begin())], *least};
  }

  // What the error may become, once `error` counts among those seen.
  double Limit(double error) const {
    const double lowest = std::min(lowest_, error);
    return lowest + tolerance_ * std::max(0.0, error_of_means_ - lowest);
  }

  TRuleModel& model_;
  int rows_;  // of the data set
  double tolerance_;
  double error_of_means_;
  double lowest_ = std::numeric_limits<double>::infinity();
};

// The whole work on one model, which tells an observer of each step.
class TSimplifier {
 public:
  // REQUIRES: everything given outlives the object.
  TSimplifier(TRuleModel& model, TPruning& pruning, const TSimplification& options)
      : model_(model), pruning_(pruning), options_(options) {}

  void Run() {
    if (options_.refit) Fit(kFitSteps);
    RunRounds();
    if (options_.atoms == 0) return;
    const auto limit = static_cast<std::size_t>(options_.atoms);
    if (!TakeOut([&] { return pruning_.Above(limit); })) return;
    if (options_.fit) Fit(kFitSteps);
    RunRounds();
  }

 private:
  void RunRounds() {
    for (int round = 0; round < options_.rounds && goes_on_; ++round) {
      const bool has_changed = TakeOut([&] { return pruning_.Tolerated(); });
      if (round > 0 && !has_changed) break;
      if (options_.fit) Fit(kFitSteps);
    }
  }

  // Takes parts out while `step` can; whether it could at all.
  template <typename TStep>
  bool TakeOut(const TStep& step) {
    bool has_changed = false;
    while (goes_on_ && step()) {
      has_changed = true;
      Report(model_.Error());
      if (options_.refit) Fit(kRefitSteps);
    }
    return has_changed;
  }

  void Fit(int steps) {
    if (!goes_on_) return;
    FitDegrees(model_, steps, [this](int, double error) { return Report(error); });
  }

  bool Report(double error) {
    if (options_.observer) goes_on_ = options_.observer(steps_++, error);
    return goes_on_;
  }

  static constexpr int kFitSteps = 200;
  static constexpr int kRefitSteps = 20;

  TRuleModel& model_;
  TPruning& pruning_;
  const TSimplification& options_;
  int steps_ = 0;
  bool goes_on_ = true;
};

}  // namespace

TFlatRules Simplified(TFlatRules rules, const TTarn& terms, const TSimplification& options) {
  CheckOptions(terms, options);
  if (rules.empty()) return rules;
  const TRuleTask task(terms, options.data, rules);
  TRuleModel model(task, std::move(rules));
  TPruning pruning(model, task, options);
  TSimplifier(model, pruning, options).Run();
  return model.Rules();
}

}  // namespace kiln
