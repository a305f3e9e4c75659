#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "Tarn/RuleExtraction/TFlatRule.h"
#include "Tarn/RuleExtraction/TRuleTask.h"

namespace kiln {

// Rules alone, put to a task: what the Tarn that is made of them answers to each row, and how that
// changes when a part of a rule goes or a degree moves.
class TRuleModel {
 public:
  // A part of a rule that can go.
  struct TPart {
    enum TKind { kCondition, kConsequence, kRule };
    TKind kind;
    std::size_t rule;
    std::size_t atom;  // among the conditions or consequences; 0 for a whole rule
  };

  // REQUIRES: the task, which outlives the model, was made for these rules; there is a rule, and
  // every rule has a condition and a consequence.
  TRuleModel(const TRuleTask& task, TFlatRules rules);

  const TFlatRules& Rules() const { return rules_; }

  // The root mean square error of the answers.
  double Error() const;

  // Rule by rule, its conditions, its consequences and the rule itself. The last condition or
  // consequence of a rule goes with the rule only, and the last rule stays.
  std::vector<TPart> Parts() const;

  // Error() as it would be without that part. Changes nothing, so that several parts can be tried
  // at the same time.
  double ErrorWithout(const TPart& part) const;
  void Remove(const TPart& part);

  // The degrees of all atoms, rule by rule, conditions first.
  std::vector<double> Degrees() const;
  void SetDegrees(std::span<const double> degrees);

  // The derivatives of the square of Error() by Degrees().
  std::vector<double> Gradient() const;

 private:
  using TColumn = std::vector<double>;  // a value for each row

  // A rule in numbers: how far each row meets it, and what it weighs for every action.
  struct TNode {
    TColumn output;
    std::vector<double> weights;
  };

  TNode NodeOf(const TFlatRule& rule) const;
  std::vector<double> WeightsOf(const TFlatRule& rule) const;
  void Compute();

  // The sum of the squared errors of an output when the node `given` takes the place of `taken`;
  // either may be null.
  double Squares(std::size_t output, const TNode* taken, const TNode* given) const;
  double ErrorWith(const TNode& taken, const TNode* given) const;
  double ErrorOf(double squares) const;

  void AddDeltas(std::size_t output, std::vector<TColumn>& deltas) const;
  void AddGradient(std::size_t rule, const std::vector<TColumn>& deltas,
                   std::vector<double>& gradient) const;

  const TRuleTask& task_;
  TFlatRules rules_;
  std::vector<TNode> nodes_;         // of the rules
  std::vector<TColumn> net_inputs_;  // of the actions
  std::vector<double> squares_;      // the sum of the squared errors of each output
};

}  // namespace kiln
