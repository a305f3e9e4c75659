#pragma once

#include <vector>

#include "RuleObject/TFuzzyRuleSet.h"
#include "Tarn/TTarn.h"

namespace kiln {

// The rules of a set as rule nodes of a Tarn, and the weights that they ask for.
//
// An antecedent is a clause, or several joined by "or"; each becomes a rule node with all the
// consequences of its rule. A clause is an atom, or several joined by "and", and each of them may
// stand behind a "not". An atom becomes the weight that joins its term with the node: its degree,
// negative where the atom is negated, behind a "not" or by itself; both cancel out.
//
// To be one term is not to be another: where a clause, or the consequences of a rule, name terms of
// a variable with positive weights, its other terms weigh the largest of these negated. That takes
// the place of a bias, which a Tarn does not have: with positive weights alone a node would answer
// 1/2 or more to everything.
class TRuleNodes {
 public:
  // Throws TException for an antecedent of any other form ("Antecedent too deep"), a set without
  // rules, a rule without conditions or consequences, an atom without a term, a degree that is no
  // finite number, and a term that a clause or the consequences of a rule name twice.
  explicit TRuleNodes(const TFuzzyRuleSet& rule_set);

  int Count() const { return count_; }

  // Gives the rule layers these weights and sets all others to 0. Throws TException, and leaves the
  // network as it is, when it has fewer rule nodes or lacks the connection of an atom; what a rule
  // is not goes only where there are connections.
  // REQUIRES: the network has the variables and terms of the rule set.
  void WriteTo(TTarn& network) const;

 private:
  struct TWeight {
    int from;
    int to;
    double value;
    bool is_needed;  // whether an atom asks for it
  };
  using TWeights = std::vector<TWeight>;

  static void CheckExist(const TTarn& network, int weight_layer, const TWeights& weights);
  static void Replace(TTarn& network, int weight_layer, const TWeights& weights);

  int count_ = 0;
  TWeights conditions_;  // from condition to rule node
  TWeights actions_;     // from rule node to action
};

}  // namespace kiln
