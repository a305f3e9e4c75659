#include "Tarn/RuleExtraction/TRuleNodes.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string_view>
#include <utility>

#include "Shared/TException.h"
#include "Shared/Text.h"
#include "Tarn/TMFGroups.h"

namespace kiln {

namespace {

// Layers of a Tarn's weights.
constexpr int kConditionToRule = 2;
constexpr int kRuleToAction = 3;

[[noreturn]] void Fail(const char* message) {
  throw TException(message, "Bad Rule Set", "TNetRule::InsertRENet");
}

// --- Antecedents -----------------------------------------------------------------------------

using TAtoms = std::vector<TRuleAtom>;

// The element as an expression of that operator; null when it is anything else.
const TRuleExpression* AsExpression(const TRuleElement& element, std::string_view operator_name) {
  const auto* expression = std::get_if<std::unique_ptr<TRuleExpression>>(&element);
  if (!expression || !EqualNoCase((*expression)->OperatorName(), operator_name)) return nullptr;
  return expression->get();
}

// An atom, or one behind a "not".
TRuleAtom LiteralOf(const TRuleElement& element) {
  const TRuleExpression* negation = AsExpression(element, "not");
  const bool is_negation = negation && negation->Count() == 1;
  const auto* atom = std::get_if<TRuleAtom>(is_negation ? &negation->Get(0) : &element);
  if (!atom) Fail("Antecedent too deep");
  TRuleAtom literal = *atom;
  if (is_negation) literal.negated = !literal.negated;
  return literal;
}

TAtoms ClauseOf(const TRuleElement& element) {
  const TRuleExpression* conjunction = AsExpression(element, "and");
  if (!conjunction) return {LiteralOf(element)};
  TAtoms clause;
  for (const TRuleElement& operand : *conjunction) clause.push_back(LiteralOf(operand));
  return clause;
}

void AddClauses(const TRuleElement& element, std::vector<TAtoms>& clauses) {
  if (const TRuleExpression* disjunction = AsExpression(element, "or")) {
    for (const TRuleElement& operand : *disjunction) AddClauses(operand, clauses);
  } else {
    clauses.push_back(ClauseOf(element));
  }
}

// --- Atoms -----------------------------------------------------------------------------------

// A term, counted across all variables of its side, and the weight that atoms give it.
struct TWeightedTerm {
  int term;
  double weight;
  bool is_named;  // whether an atom names the term
};

using TWeightedTerms = std::vector<TWeightedTerm>;

// What the atoms say of the terms of one side.
class TTermReader {
 public:
  explicit TTermReader(const TMFSetList& list) : list_(list), groups_(list.MFCounts()) {}

  TWeightedTerms Read(const TAtoms& atoms) const {
    const TWeightedTerms named = ReadNamed(atoms);
    TWeightedTerms terms;
    for (auto first = named.begin(); first != named.end();) {
      const std::size_t v = groups_.VariableOf(static_cast<std::size_t>(first->term));
      const int end = static_cast<int>(groups_.First(v) + groups_.Count(v));
      const auto last =
          std::find_if(first, named.end(), [&](const auto& term) { return term.term >= end; });
      AddVariable(v, {first, last}, terms);
      first = last;
    }
    return terms;
  }

 private:
  TWeightedTerms ReadNamed(const TAtoms& atoms) const {
    TWeightedTerms terms;
    for (const TRuleAtom& atom : atoms) {
      if (!std::isfinite(atom.degree)) Fail("Degree is not a finite number");
      terms.push_back({TermOf(atom), atom.negated ? -atom.degree : atom.degree, true});
    }
    std::ranges::sort(terms, {}, &TWeightedTerm::term);
    if (std::ranges::adjacent_find(terms, {}, &TWeightedTerm::term) != terms.end()) {
      Fail("Two atoms name the same MF");
    }
    return terms;
  }

  // Adds the terms of variable v that atoms name and, with what these are worth at most negated,
  // those that the variable must not be then.
  void AddVariable(std::size_t v, std::span<const TWeightedTerm> named,
                   TWeightedTerms& terms) const {
    const double largest = std::ranges::max(named, {}, &TWeightedTerm::weight).weight;
    auto next = named.begin();
    for (std::size_t k = 0; k < groups_.Count(v); ++k) {
      const int term = static_cast<int>(groups_.First(v) + k);
      if (next != named.end() && next->term == term) {
        terms.push_back(*next++);
      } else if (largest > 0.0) {
        terms.push_back({term, -largest, false});
      }
    }
  }

  int TermOf(const TRuleAtom& atom) const {
    const TBasicMFSet* set = list_.GetMFSet(atom.variable);
    if (!set || atom.mf == TRuleAtom::kNoMF || atom.mf == set->NumberOfMF() ||
        !set->GetMF(atom.mf)) {
      Fail("Atom without an MF");
    }
    return static_cast<int>(groups_.First(static_cast<std::size_t>(atom.variable))) + atom.mf;
  }

  const TMFSetList& list_;
  TMFGroups groups_;
};

}  // namespace

TRuleNodes::TRuleNodes(const TFuzzyRuleSet& rule_set) {
  const TTermReader inputs(rule_set.Inputs());
  const TTermReader outputs(rule_set.Outputs());
  for (const TRule& rule : rule_set.Rules()) {
    if (rule.consequences.Count() == 0) Fail("Rule without consequences");
    const auto actions = outputs.Read({rule.consequences.begin(), rule.consequences.end()});
    std::vector<TAtoms> clauses;
    AddClauses(rule.antecedent, clauses);
    for (const TAtoms& clause : clauses) {
      if (clause.empty()) Fail("Rule without conditions");
      for (const auto& [term, weight, is_named] : inputs.Read(clause)) {
        conditions_.push_back({term, count_, weight, is_named});
      }
      for (const auto& [term, weight, is_named] : actions) {
        actions_.push_back({count_, term, weight, is_named});
      }
      ++count_;
    }
  }
  if (count_ == 0) Fail("No rules to insert");
}

void TRuleNodes::WriteTo(TTarn& network) const {
  if (static_cast<std::size_t>(count_) > network.NumRules()) {
    Fail("Too many rules for this network");
  }
  CheckExist(network, kConditionToRule, conditions_);
  CheckExist(network, kRuleToAction, actions_);
  Replace(network, kConditionToRule, conditions_);
  Replace(network, kRuleToAction, actions_);
}

void TRuleNodes::CheckExist(const TTarn& network, int weight_layer, const TWeights& weights) {
  for (const TWeight& weight : weights) {
    if (weight.is_needed && !network.WeightExists(weight_layer, weight.from, weight.to)) {
      Fail("Rule needs a pruned connection");
    }
  }
}

void TRuleNodes::Replace(TTarn& network, int weight_layer, const TWeights& weights) {
  const auto from = static_cast<std::size_t>(weight_layer);
  std::ranges::fill(network.Connections(from + 1, from).Weights(), 0.0);
  for (const TWeight& weight : weights) {
    if (!network.WeightExists(weight_layer, weight.from, weight.to)) continue;
    network.SetWeightValue(weight_layer, weight.from, weight.to, weight.value);
  }
}

}  // namespace kiln
