#pragma once

#include "RuleObject/TRuleConsequenceList.h"
#include "RuleObject/TRuleExpression.h"

namespace kiln {

// "if antecedent then consequence and consequence ..."
struct TRule {
  TRuleElement antecedent;
  TRuleConsequenceList consequences;
};

}  // namespace kiln
