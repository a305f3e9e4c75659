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
#include "Tarn/RuleExtraction/TFlatRule.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TMFGroups.h"

namespace kiln::TNetRule {

namespace {

using TAtoms = std::vector<TRuleAtom>;

// Below every threshold.
constexpr double kPruned = -std::numeric_limits<double>::infinity();

// --- Preparing weights -----------------------------------------------------------------------

void LeaveAsIs(const TMFGroups&, std::span<double>) {}

// Takes from the weights of each variable their mean, in which pruned connections do not count.
// Memberships of a variable add up to 1, so that a number added to the weights of one variable and
// taken from those of another changes no answer of a network: what is left here does not depend on
// it.
void TakeMeansAway(const TMFGroups& terms, std::span<double> weights) {
  for (std::size_t v = 0; v < terms.NumVariables(); ++v) {
    const std::span<double> own = weights.subspan(terms.First(v), terms.Count(v));
    double sum = 0.0;
    std::size_t count = 0;
    for (const double weight : own) {
      if (weight == kPruned) continue;
      sum += weight;
      ++count;
    }
    if (count == 0) continue;
    for (double& weight : own) weight -= sum / static_cast<double>(count);
  }
}

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

// A method differs from others in the weights that it compares and in what it makes the
// consequences of a rule node.
struct TMethod {
  std::string_view name;
  void (*prepare)(const TMFGroups& terms, std::span<double> weights);
  TAtoms (*consequences)(const TMFGroups& actions, std::span<const double> weights,
                         double threshold);
};

constexpr TMethod kMethods[] = {
    {"RETarn", LeaveAsIs, EveryAbove},
    {"NodeLocation", TakeMeansAway, HeaviestAbove},
    {"Vireo2", TakeMeansAway, EveryPositive},
};

const TMethod& MethodOf(const TKQstructure& options) {
  const TKQstructure* name = options.Deref("method");
  if (!name) return kMethods[0];
  if (const TMethod* method = FindNoCase(kMethods, name->Name(), &TMethod::name)) return *method;
  SayLine(name->Name());
  AssertFalse("Tarn/RuleExtraction/TTarnRule");  // users quote this source
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

// The weights of a node, as the method sees them.
struct TNodeWeights {
  TNodeWeights(const TTarn& network, const TMethod& method, std::size_t node)
      : from_conditions(ConditionWeights(network, node)), to_actions(ActionWeights(network, node)) {
    method.prepare(TMFGroups(network.InputMF()), from_conditions);
    method.prepare(TMFGroups(network.OutputMF()), to_actions);
  }

  std::vector<double> from_conditions;
  std::vector<double> to_actions;
};

TFlatRules ReadRules(const TTarn& network, const TMethod& method, const TThresholds& thresholds) {
  const TMFGroups conditions(network.InputMF());
  const TMFGroups actions(network.OutputMF());
  TFlatRules rules;
  for (std::size_t node = 0; node < network.NumRules(); ++node) {
    const TNodeWeights weights(network, method, node);
    TFlatRule rule = {
        HeaviestAbove(conditions, weights.from_conditions, std::max(0.0, thresholds.in)),
        method.consequences(actions, weights.to_actions, thresholds.out)};
    if (rule.conditions.empty() || rule.consequences.empty()) continue;
    rules.push_back(std::move(rule));
  }
  return rules;
}

// --- Rule sets -------------------------------------------------------------------------------

TRule MakeRule(const TFlatRule& flat) {
  auto antecedent = std::make_unique<TRuleExpression>("and");
  for (const TRuleAtom& atom : flat.conditions) antecedent->Append(atom);
  TRule rule{std::move(antecedent), {}};
  for (const TRuleAtom& atom : flat.consequences) rule.consequences.Append(atom);
  return rule;
}

TRuleList MakeRules(const TFlatRules& flat) {
  TRuleList rules("RENet");
  for (const TFlatRule& rule : flat) rules.Append(MakeRule(rule));
  return rules;
}

}  // namespace

namespace {

const TTarn& RequiredTarn(const TBasicNetwork& network) {
  const auto* tarn = dynamic_cast<const TTarn*>(&network);
  if (!tarn) {
    throw TException("RETarn only works on Tarn", "Invalid Network Type", "TNetRule::RETarn");
  }
  return *tarn;
}

}  // namespace

TFuzzyRuleSet RETarn(const TBasicNetwork& network, const TKQstructure& options,
                     const TNetLabel* labels, const TSimplification* simplification) {
  const TTarn& tarn = RequiredTarn(network);
  const TThresholds thresholds = ThresholdsOf(options);
  std::optional<TNetLabel> default_labels;
  if (!labels) labels = &default_labels.emplace(MakeDefaultLabels(network));
  TNetMF terms = GetNetMF(tarn, *labels);
  TFlatRules rules = ReadRules(tarn, MethodOf(options), thresholds);
  if (simplification) rules = Simplified(std::move(rules), tarn, *simplification);
  return {std::move(terms.inputs), MakeRules(rules), std::move(terms.outputs)};
}

std::optional<TObstacle> ObstacleToRules(const TBasicNetwork& network,
                                         const TKQstructure& options) {
  const TTarn& tarn = RequiredTarn(network);
  const TThresholds thresholds = ThresholdsOf(options);
  const TMethod& method = MethodOf(options);
  if (!ReadRules(tarn, method, thresholds).empty()) return std::nullopt;
  double heaviest_condition = 0.0;
  double heaviest_action = kPruned;
  for (std::size_t node = 0; node < tarn.NumRules(); ++node) {
    const TNodeWeights weights(tarn, method, node);
    const double condition = std::ranges::max(weights.from_conditions);
    heaviest_condition = std::max(heaviest_condition, condition);
    if (condition <= std::max(0.0, thresholds.in)) continue;
    heaviest_action = std::max(heaviest_action, std::ranges::max(weights.to_actions));
  }
  if (heaviest_action > kPruned) {
    if (method.consequences == EveryPositive) return std::nullopt;
    return TObstacle{"ThresholdOut", heaviest_action};
  }
  if (heaviest_condition > 0.0) return TObstacle{"ThresholdIn", heaviest_condition};
  return std::nullopt;
}

}  // namespace kiln::TNetRule
