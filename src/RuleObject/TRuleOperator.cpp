#include "RuleObject/TRuleOperator.h"

#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr auto kStarts = TRuleOperator::kStartsOperand;
constexpr auto kFollows = TRuleOperator::kFollowsOperand;

// "and" binds tighter than "or", "not" tighter than both. With equal priorities on both sides a
// chain of "and" gathers in one expression, while "or" nests with its first operands innermost.
constexpr TRuleOperator kOperators[] = {
    {"and", kFollows, kStarts, 80, 80},   //
    {"or", kFollows, kStarts, 75, 73},    //
    {"not", kStarts, kStarts, 90, 1000},  //
    {"(", kStarts, kStarts, 20, 1000},    //
    {")", kFollows, kFollows, 1000, 20},  //
    {"<", kStarts, kFollows, 900, 900},   // an atom
    {"then", kFollows, kStarts, 0, 0},
};

constexpr TRuleOperator kNoOperator;

}  // namespace

const TRuleOperator& FindRuleOperator(std::string_view token) {
  const TRuleOperator* known = FindNoCase(kOperators, token, &TRuleOperator::name);
  return known ? *known : kNoOperator;
}

}  // namespace kiln
