#pragma once

#include <string>
#include <utility>

#include "RuleObject/TRule.h"
#include "RuleObject/TRuleSequence.h"

namespace kiln {

class TRuleList : public TRuleSequence<TRule> {
 public:
  // `rule_type` describes the rules: one word, which is free.
  explicit TRuleList(std::string rule_type)
      : TRuleSequence("exprnum<numRules", "exprnum<=numRules"), rule_type_(std::move(rule_type)) {}

  const std::string& RuleType() const { return rule_type_; }

 private:
  std::string rule_type_;
};

}  // namespace kiln
