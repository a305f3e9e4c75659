#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "NeuralNets/Parameters.h"
#include "Shared/Say.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"
#include "Tarn/RuleExtraction/NetworkLabels.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TMFGroups.h"

namespace kiln::TNetRule {

namespace {

using TAtoms = std::vector<TRuleAtom>;

// --- Choosing terms --------------------------------------------------------------------------

TRuleAtom AtomOf(std::size_t variable, std::size_t term, double weight) {
  return {.variable = static_cast<int>(variable), .mf = static_cast<int>(term), .degree = weight};
}

// The atoms of all terms that weigh more than the threshold. There is a weight for each term.
TAtoms EveryAbove(const TMFGroups& terms, std::span<const double> weights, double threshold) {
  TAtoms atoms;
  for (std::size_t v = 0; v < terms.NumVariables(); ++v) {
    for (std::size_t k = 0; k < terms.Count(v); ++k) {
      const double weight = weights[terms.First(v) + k];
      if (weight > threshold) atoms.push_back(AtomOf(v, k, weight));
    }
  }
  return atoms;
}

TAtoms EveryPositive(const TMFGroups& terms, std::span<const double> weights, double) {
  return EveryAbove(terms, weights, 0.0);
}

// Of these the heaviest of each variable, of equal ones the first.
TAtoms HeaviestAbove(const TMFGroups& terms, std::span<const double> weights, double threshold) {
  TAtoms heaviest;
  for (const TRuleAtom& atom : EveryAbove(terms, weights, threshold)) {
    if (heaviest.empty() || heaviest.back().variable != atom.variable) {
      heaviest.push_back(atom);
    } else if (atom.degree > heaviest.back().degree) {
      heaviest.back() = atom;
    }
  }
  return heaviest;
}

// --- Options ---------------------------------------------------------------------------------

// A method differs from others in what it makes the consequences of a rule node.
struct TMethod {
  std::string_view name;
  TAtoms (*consequences)(const TMFGroups& actions, std::span<const double> weights,
                         double threshold);
};

constexpr TMethod kMethods[] = {
    {"RETarn", EveryAbove},
    {"NodeLocation", HeaviestAbove},
    {"Vireo2", EveryPositive},
};

const TMethod& MethodOf(const TKQstructure& options) {
  const TKQstructure* name = options.Deref("method");
  if (!name) return kMethods[0];
  if (const TMethod* method = FindNoCase(kMethods, name->Name(), &TMethod::name)) return *method;
  SayLine(name->Name());
  AssertFalse("Tarn/RuleExtraction/TTarnRule");
}

struct TThresholds {
  double in;
  double out;
};

TThresholds ThresholdsOf(const TKQstructure& options) {
  const double both = NumberOr(options, "threshold", 0.0);
  return {NumberOr(options, "thresholdin", both), NumberOr(options, "thresholdout", both)};
}

// --- Rule nodes ------------------------------------------------------------------------------

// Below every threshold.
constexpr double kPruned = -std::numeric_limits<double>::infinity();

double WeightOf(const TBasicConnections& block, std::size_t to, std::size_t from) {
  return block.Exists(to, from) ? block.GetWeight(to, from) : kPruned;
}

std::vector<double> ConditionWeights(const TTarn& network, std::size_t rule) {
  const TBasicConnections& block = network.Connections(TTarn::kRuleLayer, TTarn::kConditionLayer);
  std::vector<double> weights(block.Columns());
  for (std::size_t k = 0; k < weights.size(); ++k) weights[k] = WeightOf(block, rule, k);
  return weights;
}

std::vector<double> ActionWeights(const TTarn& network, std::size_t rule) {
  const TBasicConnections& block = network.Connections(TTarn::kActionLayer, TTarn::kRuleLayer);
  std::vector<double> weights(block.Rows());
  for (std::size_t k = 0; k < weights.size(); ++k) weights[k] = WeightOf(block, k, rule);
  return weights;
}

TRule MakeRule(const TAtoms& conditions, const TAtoms& consequences) {
  auto antecedent = std::make_unique<TRuleExpression>("and");
  for (const TRuleAtom& atom : conditions) antecedent->Append(atom);
  TRule rule{std::move(antecedent), {}};
  for (const TRuleAtom& atom : consequences) rule.consequences.Append(atom);
  return rule;
}

TRuleList ReadRules(const TTarn& network, const TMethod& method, const TThresholds& thresholds) {
  const TMFGroups conditions(network.InputMF());
  const TMFGroups actions(network.OutputMF());
  TRuleList rules("RENet");
  for (std::size_t rule = 0; rule < network.NumRules(); ++rule) {
    const TAtoms antecedent =
        HeaviestAbove(conditions, ConditionWeights(network, rule), std::max(0.0, thresholds.in));
    const TAtoms consequences =
        method.consequences(actions, ActionWeights(network, rule), thresholds.out);
    if (antecedent.empty() || consequences.empty()) continue;
    rules.Append(MakeRule(antecedent, consequences));
  }
  return rules;
}

}  // namespace

TFuzzyRuleSet RETarn(const TBasicNetwork& network, const TKQstructure& options,
                     const TNetLabel* labels) {
  const auto* tarn = dynamic_cast<const TTarn*>(&network);
  if (!tarn) {
    throw TException("RETarn only works on Tarn", "Invalid Network Type", "TNetRule::RETarn");
  }
  const TThresholds thresholds = ThresholdsOf(options);
  std::optional<TNetLabel> default_labels;
  if (!labels) labels = &default_labels.emplace(MakeDefaultLabels(network));
  TNetMF terms = GetNetMF(*tarn, *labels);
  TRuleList rules = ReadRules(*tarn, MethodOf(options), thresholds);
  return {std::move(terms.inputs), std::move(rules), std::move(terms.outputs)};
}

}  // namespace kiln::TNetRule
