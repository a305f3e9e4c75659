#pragma once

#include <vector>

#include "RuleObject/TRuleAtom.h"

namespace kiln {

// A rule as extraction makes it: "if condition and condition ... then consequence and ...", with no
// negated atom and at most one condition for each input.
struct TFlatRule {
  std::vector<TRuleAtom> conditions;
  std::vector<TRuleAtom> consequences;
};

using TFlatRules = std::vector<TFlatRule>;

}  // namespace kiln
