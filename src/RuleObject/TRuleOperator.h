#pragma once

#include <string_view>

namespace kiln {

// What the parser of antecedents knows of a token.
struct TRuleOperator {
  // Tokens that start an operand, such as "not", and tokens that come behind one, such as "and".
  enum Class { kOther = 0, kStartsOperand = 1, kFollowsOperand = 2 };

  std::string_view name;
  Class token_class = kOther;
  Class follows = kOther;  // the class that the next token must have
  int left = 0;            // how tightly it binds what stands behind it: the operand goes on as far
                           // as operators with a higher `right` come
  int right = 0;           // how tightly it binds what stands in front of it

  bool IsPrefix() const { return token_class == kStartsOperand && follows == kStartsOperand; }
};

// The operator of that name, ignoring case; one of the class kOther for any other token.
const TRuleOperator& FindRuleOperator(std::string_view token);

}  // namespace kiln
