#include "Export/FclFile.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <map>
#include <vector>

#include "Export/Identifiers.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "Membership/TLShoulderTriangularMF.h"
#include "Membership/TRShoulderTriangularMF.h"
#include "Membership/TRectangularMF.h"
#include "Membership/TSingletonMF.h"
#include "Membership/TTriangularMF.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "Shared/NumberFormat.h"
#include "Shared/TDistinctNames.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::FclFile {

namespace {

using FileTools::Writer;

[[noreturn]] void Refuse(const char* message) {
  throw TException(message, "Bad Rule Set", "FclFile::Save");
}

std::string Number(double value) {
  if (!std::isfinite(value)) Refuse("Value that is no number");
  std::string text;
  AppendShortest(text, value);
  return text;
}

// --- Names -----------------------------------------------------------------------------------

// What a variable and its terms are called in the file.
struct TVariableNames {
  std::string name;
  std::vector<std::string> terms;
};

// Those of a list. Variables differ from all others, the terms of a variable from each other.
std::vector<TVariableNames> NamesOf(const TMFSetList& list, TDistinctNames& variables) {
  std::vector<TVariableNames> names;
  for (int v = 0; v < list.Count(); ++v) {
    const TBasicMFSet* set = list.GetMFSet(v);
    if (!set) Refuse("Variable without terms");
    TVariableNames& own = names.emplace_back();
    own.name = variables.Take(FclIdentifier(set->Name().value_or("unnamed")));
    TDistinctNames terms;
    for (int k = 0; k < set->NumberOfMF(); ++k) {
      const TBasicMF* mf = set->GetMF(k);
      own.terms.push_back(mf ? terms.Take(FclIdentifier(mf->Name().value_or("unnamed"))) : "");
    }
  }
  return names;
}

// --- Terms -----------------------------------------------------------------------------------

struct TPoint {
  double x, membership;
};

std::string Points(std::initializer_list<TPoint> points) {
  std::string text;
  for (const TPoint& point : points) {
    if (!text.empty()) text += ' ';
    text.append("(").append(Number(point.x)).append(", ").append(Number(point.membership)) += ')';
  }
  return text;
}

// A term and the corners of its membership function.
std::string Shape(const TBasicMF& mf) {
  if (const auto* left = dynamic_cast<const TLShoulderTriangularMF*>(&mf)) {
    return Points({{std::min(left->Centre(), left->RightBound()), 1}, {left->RightBound(), 0}});
  }
  if (const auto* right = dynamic_cast<const TRShoulderTriangularMF*>(&mf)) {
    return Points({{right->LeftBound(), 0}, {std::max(right->LeftBound(), right->Centre()), 1}});
  }
  if (const auto* triangle = dynamic_cast<const TTriangularMF*>(&mf)) {
    return Points(
        {{triangle->LeftBound(), 0}, {triangle->Centre(), 1}, {triangle->RightBound(), 0}});
  }
  if (const auto* box = dynamic_cast<const TRectangularMF*>(&mf)) {
    const double left = box->LeftBound(), right = box->RightBound();
    return Points({{left, 0}, {left, 1}, {right, 1}, {right, 0}});
  }
  const double centre = dynamic_cast<const TSingletonMF&>(mf).Centre();
  return Points({{centre, 0}, {centre, 1}, {centre, 0}});
}

// The value that an output term stands for.
std::string Centre(const TBasicMF& mf) {
  if (const auto* triangle = dynamic_cast<const TTriangularMF*>(&mf)) {
    return Number(triangle->Centre());
  }
  if (const auto* box = dynamic_cast<const TRectangularMF*>(&mf)) {
    return Number((box->LeftBound() + box->RightBound()) / 2);
  }
  return Number(dynamic_cast<const TCentredMF&>(mf).Centre());
}

void WriteVariables(Writer& out, const char* side, const std::vector<TVariableNames>& variables) {
  out.WriteText(std::string("VAR_") + side + "\n");
  for (const TVariableNames& variable : variables) {
    out.WriteText("  " + variable.name + " : REAL;\n");
  }
  out.WriteText("END_VAR\n\n");
}

void WriteTerms(Writer& out, const TBasicMFSet& set, const TVariableNames& names,
                std::string (*definition)(const TBasicMF&)) {
  for (int k = 0; k < set.NumberOfMF(); ++k) {
    if (const TBasicMF* mf = set.GetMF(k)) {
      out.WriteText("  TERM " + names.terms[static_cast<std::size_t>(k)] +
                    " := " + definition(*mf) + ";\n");
    }
  }
}

// --- Rules -----------------------------------------------------------------------------------

// The text of rules, whose key words stand in lower case because some readers know no other.
class TRules {
 public:
  TRules(const std::vector<TVariableNames>& inputs, const std::vector<TVariableNames>& outputs)
      : inputs_(inputs), outputs_(outputs) {}

  void Write(Writer& out, const TRule& rule) {
    const std::string antecedent = Condition(rule.antecedent, false, 0);
    for (const auto& [degree, conclusions] : Conclusions(rule.consequences)) {
      std::string text = "  RULE " + std::to_string(++count_) + " : if ";
      text.append(antecedent).append(" then ").append(conclusions);
      if (degree != 1.0) text.append(" with ").append(Number(degree));
      out.WriteText(text.append(";\n"));
    }
  }

  const TLeftOut& LeftOut() const { return left_out_; }

 private:
  static std::string Atom(const TRuleAtom& atom, bool negated,
                          const std::vector<TVariableNames>& variables) {
    const TVariableNames& variable = variables.at(static_cast<std::size_t>(atom.variable));
    const bool has_term = atom.mf >= 0 && static_cast<std::size_t>(atom.mf) < variable.terms.size();
    if (!has_term || variable.terms[static_cast<std::size_t>(atom.mf)].empty()) {
      Refuse("Atom without a term");
    }
    return variable.name + (negated ? " is not " : " is ") +
           variable.terms[static_cast<std::size_t>(atom.mf)];
  }

  // An antecedent, or what it is not: "not" goes inwards to the atoms, where the language has it.
  std::string Condition(const TRuleElement& element, bool negated, int depth) {
    if (const auto* atom = std::get_if<TRuleAtom>(&element)) {
      if (std::abs(atom->degree) != 1.0) ++left_out_.degrees;
      const bool turned = atom->negated != (atom->degree < 0.0);
      return Atom(*atom, turned != negated, inputs_);
    }
    const TRuleExpression& expression = *std::get<std::unique_ptr<TRuleExpression>>(element);
    if (expression.Count() == 0) Refuse("Rule without conditions");
    const bool is_not = EqualNoCase(expression.OperatorName(), "not");
    if (expression.Count() == 1) return Condition(expression.Get(0), negated != is_not, depth);
    const bool is_and = EqualNoCase(expression.OperatorName(), "and");
    std::string text = depth > 0 ? "(" : "";
    const char* gap = "";
    for (const TRuleElement& operand : expression) {
      text += gap;
      text += Condition(operand, negated, depth + 1);
      gap = is_and != negated ? " and " : " or ";
    }
    if (depth > 0) text += ')';
    return text;
  }

  // The consequences by the degree that they bear in the file.
  std::map<double, std::string> Conclusions(const TRuleConsequenceList& consequences) {
    std::map<double, std::string> texts;
    for (const TRuleAtom& atom : consequences) {
      if (atom.negated) {
        ++left_out_.consequences;
        continue;
      }
      const bool has_place = atom.degree > 0.0 && atom.degree <= 1.0;
      if (!has_place) ++left_out_.degrees;
      std::string& text = texts[has_place ? atom.degree : 1.0];
      if (!text.empty()) text += " and ";
      text += Atom(atom, false, outputs_);
    }
    return texts;
  }

  const std::vector<TVariableNames>& inputs_;
  const std::vector<TVariableNames>& outputs_;
  int count_ = 0;
  TLeftOut left_out_;
};

TLeftOut WriteBlock(Writer& out, std::string_view name, const TFuzzyRuleSet& set) {
  TDistinctNames variables;
  const std::string block = variables.Take(FclIdentifier(name));
  const std::vector<TVariableNames> inputs = NamesOf(set.Inputs(), variables);
  const std::vector<TVariableNames> outputs = NamesOf(set.Outputs(), variables);
  out.WriteText("FUNCTION_BLOCK " + block + "\n\n");
  WriteVariables(out, "INPUT", inputs);
  WriteVariables(out, "OUTPUT", outputs);
  for (std::size_t v = 0; v < inputs.size(); ++v) {
    out.WriteText("FUZZIFY " + inputs[v].name + "\n");
    WriteTerms(out, *set.Inputs().GetMFSet(static_cast<int>(v)), inputs[v], Shape);
    out.WriteText("END_FUZZIFY\n\n");
  }
  for (std::size_t v = 0; v < outputs.size(); ++v) {
    out.WriteText("DEFUZZIFY " + outputs[v].name + "\n");
    WriteTerms(out, *set.Outputs().GetMFSet(static_cast<int>(v)), outputs[v], Centre);
    out.WriteText("  ACCU : MAX;\n  METHOD : COGS;\n  DEFAULT := 0;\nEND_DEFUZZIFY\n\n");
  }
  out.WriteText("RULEBLOCK rules\n  AND : MIN;\n  OR : MAX;\n  ACT : MIN;\n");
  TRules rules(inputs, outputs);
  for (const TRule& rule : set.Rules()) rules.Write(out, rule);
  out.WriteText("END_RULEBLOCK\n\nEND_FUNCTION_BLOCK\n");
  return rules.LeftOut();
}

}  // namespace

TLeftOut Save(const std::string& path, std::string_view name, const TFuzzyRuleSet& rules) {
  TLeftOut left_out;
  FileTools::SaveFile(path, [&](Writer& out) { left_out = WriteBlock(out, name, rules); });
  return left_out;
}

}  // namespace kiln::FclFile
