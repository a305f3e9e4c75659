#include "Tarn/RuleExtraction/TRuleModel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

namespace {

// Rows that are answered together, in buffers that stay in the processor's nearest memory.
constexpr std::size_t kBlock = 256;
using TBuffer = std::array<double, kBlock>;

// to += factor from
void AddScaled(double factor, std::span<const double> from, double* to) {
  if (factor != 0.0) Kernels().add_gradient(to, 1, from.size(), &factor, from.data());
}

double Dot(std::span<const double> x, std::span<const double> y) {
  double sum = 0.0;
  Kernels().accumulate(x.data(), nullptr, 1, x.size(), y.data(), &sum);
  return sum;
}

// The terms of an output that an atom names, as a part of the weights of all actions.
std::span<double> TermsOf(const TMFGroups& actions, const TRuleAtom& atom,
                          std::span<double> weights) {
  const auto output = static_cast<std::size_t>(atom.variable);
  return weights.subspan(actions.First(output), actions.Count(output));
}

// The centre of gravity of the actions of an output, over a block of rows.
class TAnswers {
 public:
  // Adds the action centred at `centre`. REQUIRES: room for PaddedSize(count) values.
  void Add(double centre, const double* activations, std::size_t count) {
    for (std::size_t n = 0; n < count; ++n) {
      sums_[n] += activations[n];
      weighted_[n] += activations[n] * centre;
    }
  }

  double Sum(std::size_t n) const { return sums_[n]; }
  double Answer(std::size_t n) const { return weighted_[n] / sums_[n]; }

 private:
  TBuffer sums_{};
  TBuffer weighted_{};
};

}  // namespace

TRuleModel::TRuleModel(const TRuleTask& task, TFlatRules rules)
    : task_(task), rules_(std::move(rules)) {
  Compute();
}

// --- Answers ---------------------------------------------------------------------------------

TRuleModel::TNode TRuleModel::NodeOf(const TFlatRule& rule) const {
  TColumn net_input(PaddedSize(task_.Rows()));
  for (const TRuleAtom& atom : rule.conditions) {
    AddScaled(atom.degree, task_.Contrast(atom), net_input.data());
  }
  TNode node = {TColumn(net_input.size()), WeightsOf(rule)};
  Kernels().sigmoid(net_input.data(), node.output.data(), task_.Rows());
  return node;
}

// What a rule weighs for an action is its degree, or, for the other terms of an output that it
// names with a positive degree, the largest of these negated.
std::vector<double> TRuleModel::WeightsOf(const TFlatRule& rule) const {
  std::vector<double> weights(task_.Actions().NumMF());
  for (const TRuleAtom& atom : rule.consequences) {
    for (double& weight : TermsOf(task_.Actions(), atom, weights)) {
      weight = std::min(weight, -atom.degree);
    }
  }
  for (const TRuleAtom& atom : rule.consequences) {
    TermsOf(task_.Actions(), atom, weights)[static_cast<std::size_t>(atom.mf)] = atom.degree;
  }
  return weights;
}

void TRuleModel::Compute() {
  nodes_.clear();
  net_inputs_.assign(task_.Actions().NumMF(), TColumn(PaddedSize(task_.Rows())));
  for (const TFlatRule& rule : rules_) {
    const TNode& node = nodes_.emplace_back(NodeOf(rule));
    for (std::size_t a = 0; a < net_inputs_.size(); ++a) {
      AddScaled(node.weights[a], node.output, net_inputs_[a].data());
    }
  }
  squares_.resize(task_.NumOutputs());
  for (std::size_t t = 0; t < squares_.size(); ++t) squares_[t] = Squares(t, nullptr, nullptr);
}

double TRuleModel::Squares(std::size_t output, const TNode* taken, const TNode* given) const {
  const TMFGroups& actions = task_.Actions();
  const std::span<const double> expected = task_.Expected(output);
  double squares = 0.0;
  for (std::size_t first = 0; first < task_.Rows(); first += kBlock) {
    const std::size_t count = std::min(kBlock, task_.Rows() - first);
    const std::size_t padded = PaddedSize(count);
    TAnswers answers;
    for (std::size_t k = 0; k < actions.Count(output); ++k) {
      const std::size_t a = actions.First(output) + k;
      TBuffer net_inputs;
      TBuffer activations;
      std::copy_n(&net_inputs_[a][first], padded, net_inputs.begin());
      if (taken) AddScaled(-taken->weights[a], {&taken->output[first], padded}, net_inputs.data());
      if (given) AddScaled(given->weights[a], {&given->output[first], padded}, net_inputs.data());
      Kernels().sigmoid(net_inputs.data(), activations.data(), count);
      answers.Add(task_.Centre(a), activations.data(), count);
    }
    for (std::size_t n = 0; n < count; ++n) {
      const double error = answers.Answer(n) - expected[first + n];
      squares += error * error;
    }
  }
  return squares;
}

double TRuleModel::ErrorOf(double squares) const {
  return std::sqrt(squares / static_cast<double>(task_.Rows() * task_.NumOutputs()));
}

double TRuleModel::Error() const {
  return ErrorOf(std::accumulate(squares_.begin(), squares_.end(), 0.0));
}

// --- Parts -----------------------------------------------------------------------------------

std::vector<TRuleModel::TPart> TRuleModel::Parts() const {
  std::vector<TPart> parts;
  for (std::size_t r = 0; r < rules_.size(); ++r) {
    const auto add = [&](TPart::TKind kind, std::size_t count) {
      for (std::size_t i = 0; count > 1 && i < count; ++i) parts.push_back({kind, r, i});
    };
    add(TPart::kCondition, rules_[r].conditions.size());
    add(TPart::kConsequence, rules_[r].consequences.size());
    if (rules_.size() > 1) parts.push_back({TPart::kRule, r, 0});
  }
  return parts;
}

namespace {

TFlatRule Without(TFlatRule rule, const TRuleModel::TPart& part) {
  auto& atoms = part.kind == TRuleModel::TPart::kCondition ? rule.conditions : rule.consequences;
  atoms.erase(atoms.begin() + static_cast<std::ptrdiff_t>(part.atom));
  return rule;
}

}  // namespace

double TRuleModel::ErrorWithout(const TPart& part) const {
  const TNode& taken = nodes_[part.rule];
  if (part.kind == TPart::kRule) return ErrorWith(taken, nullptr);
  const TNode given = NodeOf(Without(rules_[part.rule], part));
  return ErrorWith(taken, &given);
}

double TRuleModel::ErrorWith(const TNode& taken, const TNode* given) const {
  const TMFGroups& actions = task_.Actions();
  double squares = 0.0;
  for (std::size_t t = 0; t < task_.NumOutputs(); ++t) {
    const auto own = std::span(taken.weights).subspan(actions.First(t), actions.Count(t));
    const bool is_touched = std::ranges::any_of(own, [](double weight) { return weight != 0.0; });
    squares += is_touched ? Squares(t, &taken, given) : squares_[t];
  }
  return ErrorOf(squares);
}

void TRuleModel::Remove(const TPart& part) {
  if (part.kind == TPart::kRule) {
    rules_.erase(rules_.begin() + static_cast<std::ptrdiff_t>(part.rule));
  } else {
    rules_[part.rule] = Without(std::move(rules_[part.rule]), part);
  }
  Compute();
}

// --- Degrees ---------------------------------------------------------------------------------

std::vector<double> TRuleModel::Degrees() const {
  std::vector<double> degrees;
  for (const TFlatRule& rule : rules_) {
    for (const TRuleAtom& atom : rule.conditions) degrees.push_back(atom.degree);
    for (const TRuleAtom& atom : rule.consequences) degrees.push_back(atom.degree);
  }
  return degrees;
}

void TRuleModel::SetDegrees(std::span<const double> degrees) {
  auto next = degrees.begin();
  for (TFlatRule& rule : rules_) {
    for (TRuleAtom& atom : rule.conditions) atom.degree = *next++;
    for (TRuleAtom& atom : rule.consequences) atom.degree = *next++;
  }
  Compute();
}

std::vector<double> TRuleModel::Gradient() const {
  std::vector<TColumn> deltas(net_inputs_.size(), TColumn(PaddedSize(task_.Rows())));
  for (std::size_t t = 0; t < task_.NumOutputs(); ++t) AddDeltas(t, deltas);
  std::vector<double> gradient;
  for (std::size_t r = 0; r < rules_.size(); ++r) AddGradient(r, deltas, gradient);
  return gradient;
}

// The derivatives by the net inputs of an output's actions. With o = sum(a w) / S, S = sum(a) and
// e = o - t, that of the mean square is 2 e (w - o) / S a (1 - a), over all answers.
void TRuleModel::AddDeltas(std::size_t output, std::vector<TColumn>& deltas) const {
  const double share = 2.0 / static_cast<double>(task_.Rows() * task_.NumOutputs());
  const std::size_t first = task_.Actions().First(output);
  const std::size_t end = first + task_.Actions().Count(output);
  TColumn sums(task_.Rows());
  TColumn weighted(task_.Rows());
  for (std::size_t a = first; a < end; ++a) {
    Kernels().sigmoid(net_inputs_[a].data(), deltas[a].data(), task_.Rows());
    for (std::size_t n = 0; n < task_.Rows(); ++n) {
      sums[n] += deltas[a][n];
      weighted[n] += deltas[a][n] * task_.Centre(a);
    }
  }
  const std::span<const double> expected = task_.Expected(output);
  for (std::size_t a = first; a < end; ++a) {
    for (std::size_t n = 0; n < task_.Rows(); ++n) {
      const double answer = weighted[n] / sums[n];
      const double slope = share * (answer - expected[n]) * (task_.Centre(a) - answer) / sums[n];
      deltas[a][n] = slope * deltas[a][n] * (1.0 - deltas[a][n]);
    }
    std::fill(deltas[a].begin() + static_cast<std::ptrdiff_t>(task_.Rows()), deltas[a].end(), 0.0);
  }
}

namespace {

// The derivative by the degree of a consequence, given those by the weights of all terms of its
// output: the term's own and, where the others follow the degree, less theirs.
double ByConsequence(const std::vector<TRuleAtom>& consequences, const TRuleAtom& atom,
                     std::span<const double> by_weight) {
  std::vector<bool> is_named(by_weight.size());
  const TRuleAtom* heaviest = nullptr;
  for (const TRuleAtom& other : consequences) {
    if (other.variable != atom.variable) continue;
    is_named[static_cast<std::size_t>(other.mf)] = true;
    if (!heaviest || other.degree > heaviest->degree) heaviest = &other;
  }
  double derivative = by_weight[static_cast<std::size_t>(atom.mf)];
  for (std::size_t k = 0; heaviest == &atom && k < by_weight.size(); ++k) {
    if (!is_named[k]) derivative -= by_weight[k];
  }
  return derivative;
}

}  // namespace

// Appends the derivatives by the degrees of a rule.
void TRuleModel::AddGradient(std::size_t rule, const std::vector<TColumn>& deltas,
                             std::vector<double>& gradient) const {
  const TNode& node = nodes_[rule];
  TColumn errors(node.output.size());
  std::vector<double> by_weight(deltas.size());
  for (std::size_t a = 0; a < deltas.size(); ++a) {
    if (node.weights[a] == 0.0) continue;
    AddScaled(node.weights[a], deltas[a], errors.data());
    by_weight[a] = Dot(deltas[a], node.output);
  }
  for (std::size_t n = 0; n < errors.size(); ++n) {
    errors[n] *= node.output[n] * (1.0 - node.output[n]);
  }
  for (const TRuleAtom& atom : rules_[rule].conditions) {
    gradient.push_back(Dot(errors, task_.Contrast(atom)));
  }
  const std::vector<TRuleAtom>& consequences = rules_[rule].consequences;
  for (const TRuleAtom& atom : consequences) {
    gradient.push_back(
        ByConsequence(consequences, atom, TermsOf(task_.Actions(), atom, by_weight)));
  }
}

}  // namespace kiln
