#pragma once

#include <memory>
#include <string>
#include <utility>
#include <variant>

#include "RuleObject/TRuleAtom.h"
#include "RuleObject/TRuleSequence.h"

namespace kiln {

class TRuleExpression;

// An antecedent or a part of one. REQUIRES: an expression is not null.
using TRuleElement = std::variant<TRuleAtom, std::unique_ptr<TRuleExpression>>;

// An operator applied to operands: "and" and "or" take two or more, "not" takes one.
class TRuleExpression : public TRuleSequence<TRuleElement> {
 public:
  explicit TRuleExpression(std::string operator_name)
      : TRuleSequence("exprnum<numSubExpressions", "exprnum<=numSubExpressions"),
        operator_name_(std::move(operator_name)) {}

  const std::string& OperatorName() const { return operator_name_; }

 private:
  std::string operator_name_;
};

}  // namespace kiln
