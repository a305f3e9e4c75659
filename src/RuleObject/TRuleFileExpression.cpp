#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "RuleObject/TRuleFile.h"
#include "RuleObject/TRuleOperator.h"
#include "Shared/TException.h"

namespace kiln::TRuleFile {

namespace {

[[noreturn]] void Fail(const char* message) {
  throw TException(message, "Bad Rule File", "TRuleFile::LoadExpression");
}

[[noreturn]] void FailIllFormed(int number) {
  throw TException("Ill formed expression", "Bad Rule File",
                   "TRuleFile::LoadExpression(" + std::to_string(number) + ")");
}

// Reads one antecedent by the priorities of its operators. Every operand, whether it stands behind
// a prefix or behind an operator, is a call of its own of ParseExpression.
class TExpressionParser {
 public:
  TExpressionParser(TRuleTokens& tokens, std::string_view pending, const TMFSetList& inputs)
      : tokens_(tokens), pending_(pending), inputs_(inputs) {}

  std::optional<TRuleElement> Parse() {
    if (pending_.empty()) Advance();
    auto tree = ParseExpression(kLowestPriority);
    if (!tree) return std::nullopt;
    return std::move(tree->element);
  }

  std::string_view Pending() const { return pending_; }

 private:
  struct TTree {
    TRuleElement element;
    int depth = 0;  // levels of expressions; 0 for an atom
  };

  static constexpr int kLowestPriority = 1;

  // Written out, a level of the tree takes up to two calls: one for the bracket around it and one
  // for the operand that the bracket stands in. So whatever was read can be written and read again.
  static constexpr int kMaxCalls = 2 * kMaxDepth + 1;

  void Advance() { pending_ = tokens_.Next(); }
  const TRuleOperator& Operator() const { return FindRuleOperator(pending_); }

  // Whether the pending token may stand behind an operand. Outside all brackets a word that is no
  // operator may: it ends the antecedent.
  bool OperandEnds() const {
    const TRuleOperator::Class token_class = Operator().token_class;
    return token_class == TRuleOperator::kFollowsOperand ||
           (token_class == TRuleOperator::kOther && open_brackets_ == 0);
  }

  static void CheckDepth(int depth, int limit) {
    if (depth > limit) Fail("Expression nested too deeply");
  }

  std::optional<TTree> ParseExpression(int minimum_priority);
  TTree ParseRequired(int minimum_priority, int error_number);
  TTree ParseOperand(bool& bracket_open);
  TTree ParsePrefixed(const TRuleOperator& prefix, bool& bracket_open);
  void CloseBracket(bool& bracket_open);
  TTree ParseRightSide(TTree left);
  static TTree Join(const TRuleOperator& op, TTree left, TTree right);

  TRuleTokens& tokens_;
  std::string_view pending_;
  const TMFSetList& inputs_;
  int calls_ = 0;
  int open_brackets_ = 0;
};

// An operand and all operators behind it that bind it more tightly than `minimum_priority`. Nothing
// at the end of the text.
std::optional<TExpressionParser::TTree> TExpressionParser::ParseExpression(int minimum_priority) {
  if (pending_.empty()) return std::nullopt;
  CheckDepth(++calls_, kMaxCalls);
  bool bracket_open = false;
  TTree tree = ParseOperand(bracket_open);
  for (;;) {
    const bool at_bracket = pending_ == ")";
    if (Operator().right <= minimum_priority && !(at_bracket && bracket_open)) break;
    if (at_bracket) {
      CloseBracket(bracket_open);
    } else {
      tree = ParseRightSide(std::move(tree));
    }
  }
  if (bracket_open) Fail("Missing right bracket");
  --calls_;
  return tree;
}

TExpressionParser::TTree TExpressionParser::ParseRequired(int minimum_priority, int error_number) {
  auto tree = ParseExpression(minimum_priority);
  if (!tree) FailIllFormed(error_number);
  return std::move(*tree);
}

// An atom, or a prefix and its operand. A "(" is left open for the caller to close.
TExpressionParser::TTree TExpressionParser::ParseOperand(bool& bracket_open) {
  const TRuleOperator& first = Operator();
  if (first.token_class != TRuleOperator::kStartsOperand) FailIllFormed(1);
  if (first.IsPrefix()) return ParsePrefixed(first, bracket_open);
  TTree atom{LoadAtom(tokens_.Source(), inputs_)};
  Advance();
  if (!OperandEnds()) FailIllFormed(2);
  return atom;
}

TExpressionParser::TTree TExpressionParser::ParsePrefixed(const TRuleOperator& prefix,
                                                          bool& bracket_open) {
  Advance();
  if (Operator().token_class != prefix.follows) FailIllFormed(2);
  bracket_open = prefix.name == "(";
  if (bracket_open) ++open_brackets_;
  TTree tree = ParseRequired(prefix.left, 3);
  if (!bracket_open) {
    auto expression = std::make_unique<TRuleExpression>(std::string(prefix.name));
    expression->Append(std::move(tree.element));
    tree = {std::move(expression), tree.depth + 1};
    CheckDepth(tree.depth, kMaxDepth);
  }
  if (!OperandEnds()) FailIllFormed(4);
  return tree;
}

void TExpressionParser::CloseBracket(bool& bracket_open) {
  if (!bracket_open) Fail("Extra right bracket");
  bracket_open = false;
  --open_brackets_;
  Advance();
  if (!OperandEnds()) FailIllFormed(6);
}

// The pending operator, its right operand, and `left` in front of it.
TExpressionParser::TTree TExpressionParser::ParseRightSide(TTree left) {
  const TRuleOperator& op = Operator();
  Advance();
  if (Operator().token_class != op.follows) FailIllFormed(5);
  TTree tree = Join(op, std::move(left), ParseRequired(op.left, 5));
  CheckDepth(tree.depth, kMaxDepth);
  if (!OperandEnds()) FailIllFormed(7);
  return tree;
}

// An operator with equal priorities adds its right operand to a left one of the same name.
TExpressionParser::TTree TExpressionParser::Join(const TRuleOperator& op, TTree left, TTree right) {
  auto* chain = std::get_if<std::unique_ptr<TRuleExpression>>(&left.element);
  if (chain && op.left == op.right && (*chain)->OperatorName() == op.name) {
    (*chain)->Append(std::move(right.element));
    left.depth = std::max(left.depth, right.depth + 1);
    return left;
  }
  auto expression = std::make_unique<TRuleExpression>(std::string(op.name));
  expression->Append(std::move(left.element));
  expression->Append(std::move(right.element));
  return {std::move(expression), std::max(left.depth, right.depth) + 1};
}

}  // namespace

std::optional<TRuleElement> LoadExpression(TRuleTokens& tokens, std::string_view& pending,
                                           const TMFSetList& inputs) {
  TExpressionParser parser(tokens, pending, inputs);
  auto expression = parser.Parse();
  pending = parser.Pending();
  return expression;
}

}  // namespace kiln::TRuleFile
