#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Networks.h"
#include "Tarn/RuleExtraction/DegreeFit.h"
#include "Tarn/RuleExtraction/RuleSimplification.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/RuleExtraction/TRuleModel.h"

namespace kiln {
namespace {

TRule RuleOf(const TFlatRule& flat) {
  auto antecedent = std::make_unique<TRuleExpression>("and");
  for (const TRuleAtom& atom : flat.conditions) antecedent->Append(atom);
  TRule rule{std::move(antecedent), {}};
  for (const TRuleAtom& atom : flat.consequences) rule.consequences.Append(atom);
  return rule;
}

// Random rules over the terms of a random Tarn whose centres may cross, and a set that has wrapped.
struct TCase {
  explicit TCase(unsigned seed) : terms({{2, 3, 2, 4}}, 1, {{3, 2}}) {
    Random::Seed(seed);
    terms.InitWeights(-1.0, 1.0);
    TValues centres = terms.GetWeightLayer(1);
    for (double& centre : centres) centre = Random::Uniform(0.0, 1.0);
    terms.SetWeightLayer(1, centres);
    data = MakePatterns(300, 4, 2, 0.0, 1.0);
    for (int r = 0; r < 4; ++r) rules.push_back(MakeRule());
  }

  TFlatRule MakeRule() const {
    TFlatRule rule;
    for (int v = 0; v < 4; ++v) {
      if (v != 1 && Random::Below(3) == 0) continue;
      const auto count = static_cast<std::uint64_t>(terms.InputMF()[static_cast<std::size_t>(v)]);
      rule.conditions.push_back({v, static_cast<int>(Random::Below(count)), Degree()});
    }
    rule.consequences = {{0, static_cast<int>(Random::Below(2)), Degree()}, {0, 2, Degree()}};
    if (Random::Below(2) == 0) rule.consequences.push_back({1, 1, Degree()});
    return rule;
  }

  static double Degree() { return Random::Uniform(0.1, 3.0); }

  // The root mean square error of the network that is made of the rules.
  double ErrorOf(const TFlatRules& of) const {
    auto [inputs, outputs] = TNetRule::GetNetMF(terms, MakeDefaultLabels({2, 3, 2, 4}, {3, 2}));
    TRuleList list("RENet");
    for (const TFlatRule& rule : of) list.Append(RuleOf(rule));
    return ErrorOn(*TNetRule::RITarn({std::move(inputs), std::move(list), std::move(outputs)}),
                   *data);
  }

  // The error of answering the means.
  double ErrorOfMeans() const {
    double squares = 0.0;
    for (std::size_t t = 0; t < 2; ++t) {
      double sum = 0.0;
      double sum_of_squares = 0.0;
      for (int n = 0; n < 300; ++n) {
        const double value = data->Row(n).Outputs[t];
        sum += value;
        sum_of_squares += value * value;
      }
      squares += sum_of_squares - sum * sum / 300;
    }
    return std::sqrt(squares / 600);
  }

  TTarn terms;
  std::unique_ptr<Data> data;
  TFlatRules rules;
};

// Every way to take an atom or a rule out: by rule its conditions, its consequences, itself.
std::vector<TFlatRules> Shorter(const TFlatRules& rules) {
  std::vector<TFlatRules> shorter;
  for (std::size_t r = 0; r < rules.size(); ++r) {
    for (auto side : {&TFlatRule::conditions, &TFlatRule::consequences}) {
      const std::size_t count = (rules[r].*side).size();
      for (std::size_t i = 0; count > 1 && i < count; ++i) {
        auto& atoms = shorter.emplace_back(rules)[r].*side;
        atoms.erase(atoms.begin() + static_cast<std::ptrdiff_t>(i));
      }
    }
    if (rules.size() == 1) continue;
    TFlatRules& fewer = shorter.emplace_back(rules);
    fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(r));
  }
  return shorter;
}

std::string Text(const TFlatRules& rules) {
  std::string text;
  for (const TFlatRule& rule : rules) {
    for (const auto* atoms : {&rule.conditions, &rule.consequences}) {
      for (const TRuleAtom& atom : *atoms) {
        text += std::to_string(atom.variable) + '.' + std::to_string(atom.mf) + '*' +
                std::to_string(atom.degree) + ' ';
      }
      text += "> ";
    }
  }
  return text;
}

TEST(RuleModel, AnswersAsTheNetworkOfItsRules) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const TCase c(seed);
    const TRuleTask task(c.terms, *c.data, c.rules);
    TRuleModel model(task, c.rules);
    EXPECT_NEAR(model.Error(), c.ErrorOf(c.rules), 1e-12);
    EXPECT_NEAR(task.ErrorOfMeans(), c.ErrorOfMeans(), 1e-12);

    const auto parts = model.Parts();
    const auto shorter = Shorter(c.rules);
    ASSERT_EQ(parts.size(), shorter.size());
    for (std::size_t i = 0; i < parts.size(); ++i) {
      EXPECT_NEAR(model.ErrorWithout(parts[i]), c.ErrorOf(shorter[i]), 1e-12);
    }

    TValues degrees = model.Degrees();
    const TValues gradient = model.Gradient();
    const auto square = [&] {
      model.SetDegrees(degrees);
      return model.Error() * model.Error();
    };
    for (std::size_t k = 0; k < degrees.size(); ++k) {
      EXPECT_NEAR(gradient[k], Slope(degrees[k], 1e-6, square), 1e-8);
    }
  }
}

TEST(RuleSimplification, TakesOutWhatCostsLeast) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    const TCase c(seed);
    const double tolerance = 0.02 * seed;
    TFlatRules expected = c.rules;
    double lowest = c.ErrorOf(expected);
    for (auto shorter = Shorter(expected); !shorter.empty(); shorter = Shorter(expected)) {
      TValues errors;
      for (const TFlatRules& rules : shorter) errors.push_back(c.ErrorOf(rules));
      const auto least = std::ranges::min_element(errors);
      lowest = std::min(lowest, *least);
      if (*least > lowest + tolerance * std::max(0.0, c.ErrorOfMeans() - lowest)) break;
      expected = shorter[static_cast<std::size_t>(least - errors.begin())];
    }
    const TSimplification options = {.data = *c.data, .tolerance = tolerance, .fit = false};
    EXPECT_EQ(Text(Simplified(c.rules, c.terms, options)), Text(expected));
  }
}

TEST(RuleSimplification, FitsDegrees) {
  const TCase c(7);
  const TRuleTask task(c.terms, *c.data, c.rules);
  TRuleModel model(task, c.rules);
  const auto objective = [&] {
    double squares = 0.0;
    for (const double degree : model.Degrees()) squares += degree * degree;
    return model.Error() * model.Error() + kDegreePull * squares;
  };
  double least = objective();
  FitDegrees(model, 200, [&](int, double) {
    least = std::min(least, objective());
    return true;
  });
  EXPECT_EQ(objective(), least);
  // Nothing is left to gain: the derivatives by the logarithms of the degrees are next to 0.
  const TValues degrees = model.Degrees();
  const TValues gradient = model.Gradient();
  for (std::size_t k = 0; k < degrees.size(); ++k) {
    EXPECT_GT(degrees[k], 0.0);
    EXPECT_NEAR((gradient[k] + 2 * kDegreePull * degrees[k]) * degrees[k], 0.0, 1e-4);
  }
}

TEST(RuleSimplification, KeepsToAtomsWhateverTheyCost) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const TCase c(seed);
    const TSimplification options = {
        .data = *c.data, .tolerance = 0.0, .refit = seed % 2 == 0, .rounds = 2, .atoms = 2};
    for (const TFlatRule& rule : Simplified(c.rules, c.terms, options)) {
      EXPECT_LE(rule.conditions.size(), 2u);
    }
  }
}

TEST(RuleSimplification, EndsWhenAskedAndRefusesWhatDoesNotFit) {
  const TCase c(3);
  int calls = 0;
  TSimplification once = {.data = *c.data, .tolerance = 9.0};
  once.observer = [&](int step, double) {
    EXPECT_EQ(step, calls++);
    return false;
  };
  const std::string one_less = Text(Simplified(c.rules, c.terms, once));
  EXPECT_EQ(calls, 1);
  const auto shorter = Shorter(c.rules);
  EXPECT_EQ(std::ranges::count(shorter, one_less, Text), 1);
  const auto failure = [&](const Data& data, double tolerance, int rounds) {
    const TSimplification options = {.data = data, .tolerance = tolerance, .rounds = rounds};
    return Failure([&] { Simplified(c.rules, c.terms, options); });
  };
  const std::string kPlace = " Invalid Parameter TNetRule::RETarn";
  EXPECT_EQ(failure(Data(3, 4, 2, false), 0.1, 1), "the data set has no rows" + kPlace);
  EXPECT_EQ(failure(*MakePatterns(3, 4, 1, 0, 1), 0.1, 1),
            "the data set has 1 outputs but the network has 2" + kPlace);
  for (const double tolerance : {-0.1, std::nan(""), HUGE_VAL}) {
    EXPECT_EQ(failure(*c.data, tolerance, 1), "tolerance must be a number of at least 0" + kPlace);
  }
  EXPECT_EQ(failure(*c.data, 0, 0), "rounds must be at least 1" + kPlace);
}

}  // namespace
}  // namespace kiln
