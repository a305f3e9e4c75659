#pragma once

#include <string_view>

#include "Membership/TMFSetList.h"
#include "Plot/TPicture.h"
#include "RuleObject/TFuzzyRuleSet.h"

namespace kiln {

// The terms of every variable, inputs first: a panel for each, with the membership functions and
// their names. REQUIRES: some variable has terms, see HasTerms.
TPicture TermsPicture(std::string_view alias, const TMFSetList& inputs, const TMFSetList& outputs);
bool HasTerms(const TMFSetList& variables);

// Rules against terms: a column for each rule, a row for each term that some rule names, shaded by
// the degree with which the rule names it; conditions stand above the line and conclusions below.
// What is negated, or has a negative degree, is shaded in another colour and crossed by a minus.
// Shows the first kMostRules of the rules and kMostTerms of the terms, and says so in the title.
// REQUIRES: there are rules, and some of them name terms.
TPicture RulesPicture(std::string_view alias, const TFuzzyRuleSet& rules);

inline constexpr std::size_t kMostRules = 120;
inline constexpr std::size_t kMostTerms = 120;

}  // namespace kiln
