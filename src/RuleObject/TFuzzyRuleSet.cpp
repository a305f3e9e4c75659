#include "RuleObject/TFuzzyRuleSet.h"

namespace kiln {

namespace {

int AtomsOf(const TRuleElement& element) {
  const auto* expression = std::get_if<std::unique_ptr<TRuleExpression>>(&element);
  if (!expression) return 1;
  int atoms = 0;
  for (const TRuleElement& operand : **expression) atoms += AtomsOf(operand);
  return atoms;
}

}  // namespace

int TFuzzyRuleSet::NumAtoms() const {
  int atoms = 0;
  for (const TRule& rule : rules_) atoms += AtomsOf(rule.antecedent);
  return atoms;
}

}  // namespace kiln
