#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "FileHandler/Syntax/SafeFile.h"
#include "FileHandler/TFuzzyMFFiler.h"
#include "RuleObject/TRuleFile.h"
#include "RuleObject/TRuleOperator.h"
#include "Shared/NumberFormat.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::TRuleFile {

namespace {

using FileTools::Writer;

constexpr int kDegreeDigits = 6;

// The name of a set or a membership function, null for an empty slot.
template <typename T>
const std::string& RequiredName(const T* named) {
  if (!named || !named->Name()) {
    throw TException("Atom without a name", "Bad Rule Set", "TRuleFile::SaveRules");
  }
  return *named->Name();
}

void SaveAtom(Writer& out, const TRuleAtom& atom, const TMFSetList& list) {
  if (!std::isfinite(atom.degree)) {
    throw TException("Degree is not a finite number", "Bad Rule Set", "TRuleFile::SaveRules");
  }
  const TBasicMFSet* set = list.GetMFSet(atom.variable);
  std::string text = "<" + RequiredName(set) + " ";
  if (atom.mf != TRuleAtom::kNoMF) text += "is ";
  if (atom.negated) text += "not ";
  if (atom.mf != TRuleAtom::kNoMF) text += RequiredName(set->GetMF(atom.mf)) + " ";
  out.WriteText(text + FormatGeneral(atom.degree, kDegreeDigits) + ">");
}

void SaveElement(Writer& out, const TRuleElement& element, const TMFSetList& inputs, int depth);

void SaveSingleOperand(Writer& out, const TRuleExpression& expression, const TMFSetList& inputs,
                       int depth) {
  const TRuleOperator& op = FindRuleOperator(expression.OperatorName());
  if (op.IsPrefix()) out.WriteText(expression.OperatorName() + " ");
  SaveElement(out, expression.Get(0), inputs, depth + 1);
}

void SaveOperands(Writer& out, const TRuleExpression& expression, const TMFSetList& inputs,
                  int depth) {
  if (depth > 0) out.WriteText("(");
  for (int i = 0; i < expression.Count(); ++i) {
    if (i > 0) out.WriteText(" " + expression.OperatorName() + " ");
    SaveElement(out, expression.Get(i), inputs, depth + 1);
  }
  if (depth > 0) out.WriteText(")");
}

// `depth` counts the expressions around the element: those inside others stand in brackets.
void SaveElement(Writer& out, const TRuleElement& element, const TMFSetList& inputs, int depth) {
  if (const auto* atom = std::get_if<TRuleAtom>(&element)) {
    SaveAtom(out, *atom, inputs);
    return;
  }
  const TRuleExpression& expression = *std::get<std::unique_ptr<TRuleExpression>>(element);
  if (expression.Count() == 0) {
    out.WriteText("NULL");
  } else if (expression.Count() == 1) {
    SaveSingleOperand(out, expression, inputs, depth);
  } else {
    SaveOperands(out, expression, inputs, depth);
  }
}

void SaveConsequences(Writer& out, const TRuleConsequenceList& consequences,
                      const TMFSetList& outputs) {
  if (consequences.Count() == 0) out.WriteText("NULL");
  for (int i = 0; i < consequences.Count(); ++i) {
    if (i > 0) out.WriteText(" and ");
    SaveAtom(out, consequences.Get(i), outputs);
  }
}

void SaveRule(Writer& out, const TRule& rule, const TFuzzyRuleSet& rule_set) {
  out.WriteText("if ");
  SaveElement(out, rule.antecedent, rule_set.Inputs(), 0);
  out.WriteText("\n  then ");
  SaveConsequences(out, rule.consequences, rule_set.Outputs());
  out.WriteText("\n\n");
}

using TNames = std::vector<std::string_view>;

template <typename T>
void AddName(const T* named, TNames& names) {
  if (named && named->Name()) names.emplace_back(*named->Name());
}

// Atoms refer to variables and terms by name, in any case, which must tell them apart.
void CheckDifferent(TNames names, const std::string& what) {
  std::ranges::sort(names, LessNoCase);
  const auto twice = std::ranges::adjacent_find(names, EqualNoCase);
  if (twice == names.end()) return;
  throw TException("Two " + what + " are called " + std::string(*twice), "Bad Rule Set",
                   "TRuleFile::SaveRules");
}

void CheckNames(const TMFSetList& list, const std::string& side) {
  TNames variables;
  for (int v = 0; v < list.Count(); ++v) {
    const TBasicMFSet* set = list.GetMFSet(v);
    AddName(set, variables);
    TNames terms;
    for (int k = 0; set && k < set->NumberOfMF(); ++k) AddName(set->GetMF(k), terms);
    CheckDifferent(std::move(terms), "terms of one " + side);
  }
  CheckDifferent(std::move(variables), side + "s");
}

}  // namespace

void SaveRules(Writer& out, const TFuzzyRuleSet& rule_set) {
  CheckNames(rule_set.Inputs(), "input");
  CheckNames(rule_set.Outputs(), "output");
  out.WriteFormatVersion();
  out.WriteStartTag("FuzzyRules");
  out.WriteString("RuleType", rule_set.Rules().RuleType());
  out.WriteNewline();
  TFuzzyMFFiler::SaveMFList(out, rule_set.Inputs());
  TFuzzyMFFiler::SaveMFList(out, rule_set.Outputs());
  out.WriteStartTag("RuleList");
  out.WriteNewline();
  for (const TRule& rule : rule_set.Rules()) SaveRule(out, rule, rule_set);
  out.WriteEndTag("RuleList");
  out.WriteNewline();
  out.WriteEndTag("FuzzyRules");
}

void SaveRules(const std::string& path, const TFuzzyRuleSet& rule_set) {
  FileTools::SaveFile(path, [&](Writer& out) { SaveRules(out, rule_set); });
}

}  // namespace kiln::TRuleFile
