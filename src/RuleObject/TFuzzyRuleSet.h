#pragma once

#include <utility>

#include "Membership/TMFSetList.h"
#include "RuleObject/TRuleList.h"

namespace kiln {

// Fuzzy rules together with the terms that they speak of: the atoms of antecedents count positions
// in the list of inputs, those of consequences in the list of outputs.
class TFuzzyRuleSet {
 public:
  TFuzzyRuleSet(TMFSetList inputs, TRuleList rules, TMFSetList outputs)
      : inputs_(std::move(inputs)), rules_(std::move(rules)), outputs_(std::move(outputs)) {}

  const TMFSetList& Inputs() const { return inputs_; }
  const TRuleList& Rules() const { return rules_; }
  const TMFSetList& Outputs() const { return outputs_; }

  // The atoms of all antecedents.
  int NumAtoms() const;

 private:
  TMFSetList inputs_;
  TRuleList rules_;
  TMFSetList outputs_;
};

}  // namespace kiln
