#pragma once

#include "RuleObject/TRuleAtom.h"
#include "RuleObject/TRuleSequence.h"

namespace kiln {

// What a rule concludes.
class TRuleConsequenceList : public TRuleSequence<TRuleAtom> {
 public:
  TRuleConsequenceList() : TRuleSequence("exprnum<numConsequences", "exprnum<=numConsequences") {}
};

}  // namespace kiln
