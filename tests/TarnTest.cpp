#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>
#include <tuple>

#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "Tarn/Centres.h"
#include "Tarn/TCentreConnections.h"
#include "Tarn/TTarnLWF.h"

namespace kiln {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A network of 2 to 5 terms a variable with ascending random centres.
std::shared_ptr<TTarn> MakeTarn(int inputs, int outputs) {
  const auto terms = [](int variables) {
    TSizes counts(static_cast<std::size_t>(variables));
    for (int& count : counts) count = 2 + Random::Next() % 4;
    return counts;
  };
  auto tarn = std::make_shared<TTarn>(terms(inputs), 4, terms(outputs));
  tarn->InitWeights(-2.0, 2.0);
  for (const int layer : {1, 4}) {
    TValues centres = tarn->GetWeightLayer(layer);
    for (double& centre : centres) centre = std::clamp(centre + Random::Uniform(-.1, .1), 0., 1.);
    tarn->SetWeightLayer(layer, centres);
  }
  return tarn;
}

// --- The formulas, one after the other -------------------------------------------------------

double SlowMembership(const double* c, int k, int last, double x) {
  if (k == 0 && x <= c[k]) return 1.0;
  if (k == last && x >= c[k]) return 1.0;
  if (k < last && c[k] <= x && x < c[k + 1]) return 1 - (x - c[k]) / (c[k + 1] - c[k]);
  if (k > 0 && x <= c[k] && c[k - 1] < x) return 1 - (c[k] - x) / (c[k] - c[k - 1]);
  return 0.0;
}

TValues SlowRecall(const TTarn& tarn, std::span<const double> inputs) {
  const TValues weights = tarn.GetWeights(FMaskAll);
  const double* w = weights.data();
  auto x = inputs.begin();
  TValues values;
  for (const int terms : tarn.InputMF()) {
    for (int k = 0; k < terms; ++k) values.push_back(SlowMembership(w, k, terms - 1, *x));
    w += terms;
    ++x;
  }
  for (const std::size_t layer : {TTarn::kRuleLayer, TTarn::kActionLayer}) {
    TValues outputs(tarn.Layer(layer).NumNeurons());
    for (double& output : outputs) {
      double net = 0.0;
      for (const double value : values) net += *w++ * value;
      output = 1.0 / (1.0 + std::exp(-net));
    }
    values = outputs;
  }
  TValues result;
  auto action = values.begin();
  for (const int terms : tarn.OutputMF()) {
    double numerator = 0.0;
    double denominator = 0.0;
    for (const auto end = action + terms; action < end; ++action) {
      numerator += *action * *w++;
      denominator += *action;
    }
    result.push_back(numerator / denominator);
  }
  return result;
}

// --- Structure and recall --------------------------------------------------------------------

TEST(TTarnTest, RecallsAsTheFormulasSay) {
  Random::Seed(3);
  for (int n = 0; n < 51; ++n) {
    ForceKernels(static_cast<TKernelLevel>(n / 17));
    const auto tarn = MakeTarn(1 + n % 3, 1 + n % 2);
    TValues centres = tarn->GetWeightLayer(1);
    if (n % 5 == 0) std::ranges::reverse(centres);  // they need not ascend
    tarn->SetWeightLayer(1, centres);
    if (n % 2 == 0) tarn->PruneNode(TTarn::kRuleLayer, 1);
    const auto data = MakePatterns(40, 1 + n % 3, 0, -0.5, 1.5);
    const auto recalled = tarn->Clone()->Recall(data.get());
    for (int row = 0; row < 40; ++row) {
      const TValues expected = SlowRecall(*tarn, data->Row(row).Inputs);
      for (std::size_t t = 0; t < expected.size(); ++t) {
        EXPECT_NEAR(expected[t], recalled->Row(row).Outputs[t], 1e-12);
      }
    }
  }
}

TEST(TTarnTest, SpreadsCentresEvenly) {
  TTarn tarn(TSizes{2, 4}, 1, TSizes{3});
  const TValues inputs = {0.0, 1.0, 0.0, 1.0 / 3, 2.0 / 3, 1.0};
  EXPECT_EQ(inputs, tarn.GetWeightLayer(1));
  EXPECT_EQ(tarn.GetWeightLayer(4), (TValues{0.0, 0.5, 1.0}));
  tarn.SetWeightLayer(1, TValues(6, 0.5));
  tarn.InitWeights(0.25, 0.25);
  EXPECT_EQ(inputs, tarn.GetWeightLayer(1));
  EXPECT_EQ(TValues(3, 0.25), tarn.GetWeightLayer(3));
}

// Actions that add up in another order than their products with centres of 1 must not give more
// than 1; an output that leaves [0, 1] for real is told and refused.
TEST(TTarnTest, KeepsOutputsWithinTheUniverse) {
  Random::Seed(5);
  TTarn tarn(TSizes{2}, 3, TSizes{5000});
  TValues output(1);
  const auto recalled = [&](double centre, double input = 0.3) {
    tarn.SetWeightLayer(4, TValues(5000, centre));
    tarn.RecallPattern(TValues{input}, output);
    return output[0];
  };
  for (int n = 0; n < 100; ++n) {
    TIterateObjRandomize randomize(-3.0, 3.0);
    tarn.Connections(4, 3).Iterate(randomize);
    EXPECT_LE(recalled(1.0), 1.0);
  }
  EXPECT_LE(recalled(1.0, kNaN), 1.0);
  EXPECT_EQ(recalled(0.0), 0.0);
  for (const auto& [outside, text] :
       {std::pair{1.5, "1.5\n"}, std::pair{-0.25, "-0.25\n"}, std::pair{kNaN, "nan\n"}}) {
    testing::internal::CaptureStdout();
    const std::string failure = Failure([&, centre = outside] { recalled(centre); });
    EXPECT_EQ(text, testing::internal::GetCapturedStdout());
    EXPECT_EQ(failure.find("Assertion failed: (ActActivation >= 0) && (ActActivation <= 1), "
                           "file Tarn/TTarnOutputLayer"),
              0u);
  }
}

TEST(TTarnTest, RefusesWhatIsNotThere) {
  TTarn tarn(TSizes{2, 3}, 4, TSizes{2});
  TTarn* const t = &tarn;
  const auto make = [](int inputs, int outputs) { TTarn(TSizes{inputs}, 1, TSizes{outputs}); };
  const std::tuple<std::string, std::string, std::function<void()>> kCases[] = {
      {"Invalid weight layer", "GetWeightValue", [=] { t->GetWeightValue(0, 0, 0); }},
      {"Invalid weight number", "GetWeightValue", [=] { t->GetWeightValue(1, 0, 2); }},
      {"Invalid weight number", "GetWeightValue", [=] { t->GetWeightValue(2, -1, 0); }},
      {"Invalid weight number", "SetWeightValue", [=] { t->SetWeightValue(4, 0, 1, 0.5); }},
      {"Invalid weight number", "FreezeWeight", [=] { t->FreezeWeight(3, 4, 0); }},
      {"Invalid weight number", "UnfreezeWeight", [=] { t->UnfreezeWeight(3, 0, 2); }},
      {"Invalid node number", "WeightExists", [=] { t->WeightExists(2, 6, 0); }},
      {"Invalid node layer", "GetActivationValue", [=] { t->GetActivationValue(6, 0); }},
      {"Invalid weight layer", "GetWeightValue", [=] { t->GetWeightValue(5, 0, 0); }},
      {"Invalid node layer", "GetActivationValue", [=] { t->GetActivationValue(-1, 0); }},
      {"Invalid node number", "GetActivationValue", [=] { t->GetActivationValue(1, -1); }},
      {"Invalid node number", "GetActivationValue", [=] { t->GetActivationValue(1, 2); }},
      {"Invalid number of weights", "SetWeightLayer", [=] { t->SetWeightLayer(2, {}); }},
      {"Must be >= 2 MF per input", "TTarn", [=] { make(1, 1); }},
      {"Must be >= 2 MF per output", "TTarn", [=] { make(2, -5); }},
      {"a Tarn needs an input, a rule and an output", "TTarn", [] { TTarn({}, 1, TSizes{2}); }},
      {"a Tarn needs an input, a rule and an output", "TTarn",
       [] { TTarn(TSizes{2}, 0, TSizes{2}); }},
      {"a Tarn needs an input, a rule and an output", "TTarn", [] { TTarn(TSizes{2}, 1, {}); }},
      {"a Tarn of more than 16777216 neurons", "TTarn", [=] { make(2000000000, 2000000000); }},
  };
  for (const auto& [message, operation, action] : kCases) {
    EXPECT_EQ(message + " Bad Parameter TTarn::" + operation, Failure(action));
  }
  EXPECT_EQ(Failure([=] { t->Recall(nullptr); }),
            "Null data pointer Null Pointer Parameter TTarn::Recall");
  EXPECT_EQ(Failure([=] { t->AddNeuron(4, 0); }).find("Assertion failed: IsResizable()"), 0u);
  EXPECT_EQ(tarn.Layer(4).NumNeurons(), 2u);
  EXPECT_TRUE(tarn.WeightExists(1, 1, 2));
  EXPECT_TRUE(tarn.WeightExists(4, 1, 0));
  const int ends[] = {0, 2, 5, 4, 2};  // the neuron behind the last one may be asked for
  for (int layer = 1; layer <= 4; ++layer) EXPECT_FALSE(tarn.WeightExists(layer, ends[layer], 0));
}

// --- Order of centres ------------------------------------------------------------------------

TEST(CentresTest, ArePutBackInOrder) {
  constexpr TMask kFree = FMaskAll;
  constexpr TMask kFrozen = FMaskExists;
  const struct {
    TValues centres;
    std::vector<TMask> masks;
    TValues expected;
  } kCases[] = {
      {{-0.3, 1.4}, {kFree, kFree}, {0.0, 1.0}},
      {{0.6, 0.5, 0.4}, {kFree, kFree, kFree}, {0.6, 0.6001, 0.6002}},
      {{1.2, 1.3, 1.1}, {kFree, kFree, kFree}, {0.9998, 0.9999, 1.0}},
      {{kNaN, 0.5, kNaN}, {kFree, kFree, kFree}, {0.0, 0.5, 0.5001}},
      {{0.9, 0.5, 0.1}, {kFree, kFrozen, kFree}, {0.4999, 0.5, 0.5001}},
      {{0.5, 0.3, 0.50003}, {kFrozen, kFree, kFrozen}, {0.5, 0.500015, 0.50003}},  // too narrow
      {{0.3, 0.2, 1.7}, {kFree, kFree, kFrozen}, {0.3, 0.3001, 1.7}},
      {{-3.0, -2.0}, {kFrozen, kFree}, {-3.0, 0.0}},
      {{1.5, 0.2}, {kFrozen, kFree}, {1.5, 1.5}},  // order before range
  };
  for (const auto& test : kCases) {
    TValues centres = test.centres;
    PutCentresInOrder(centres, TValues(centres.size(), 1e-4), test.masks.data());
    for (std::size_t k = 0; k < centres.size(); ++k) {
      EXPECT_NEAR(test.expected[k], centres[k], 1e-15) << testing::PrintToString(test.centres);
    }
  }
  TValues crowd(20001, 0.7);  // more than fit at the usual distance
  PutCentresInOrder(crowd, TValues(crowd.size(), 1e-4), nullptr);
  EXPECT_TRUE(crowd.front() >= 0.0 && crowd.back() == 1.0);
  EXPECT_EQ(crowd.end(), std::ranges::adjacent_find(crowd, std::greater_equal<>()));
}

TEST(CentresTest, KeepTheirDistances) {
  TValues distances(4);
  MeasureCentreDistances(TValues{0.1, 0.12, 0.7, 0.6}, distances);
  const TValues expected = {0.02, 0.1 / 3, 0.0, 0.0};
  for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(distances[k], expected[k], 1e-15);
  TValues centres = {0.1, 0.05, 0.99, 1.2};
  PutCentresInOrder(centres, TValues{0.02, 0.05, 0.1, 0.0}, nullptr);
  const TValues ordered = {0.1, 0.12, 0.9, 1.0};
  for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(centres[k], ordered[k], 1e-15);
  TValues gradients = {1.0, 2.0, 3.0};
  ScaleCentreGradients(TValues{0.0, 0.5, 0.25}, gradients);
  EXPECT_EQ(gradients, (TValues{0.25, 0.125, 0.1875}));
}

// --- Training --------------------------------------------------------------------------------

TKQstructure Params(const std::string& settings) {
  return TKQstructure::Parse("(Params :LEARNINGRATE " + settings + ")");
}

// The sum of (o - t)^2 over all outputs of all rows.
double SquaredError(const TTarn& tarn, const Data& data) {
  return std::pow(ErrorOn(tarn, data), 2) * data.Outputs() * data.DataRows();
}

// The derivative of half of it by each weight, as a central difference.
TValues Gradient(TTarn tarn, const Data& data) {
  TValues weights = tarn.GetWeights(FMaskAll);
  const auto half_error = [&] {
    tarn.SetWeights(weights, FMaskAll);
    return SquaredError(tarn, data) / 2;
  };
  TValues gradient;
  for (double& weight : weights) gradient.push_back(Slope(weight, 1e-6, half_error));
  return gradient;
}

// The square of the gap from the centre to its nearest neighbour.
double SquaredGap(const double* centres, int k, int terms) {
  double gap = 2.0;
  if (k > 0) gap = std::abs(centres[k] - centres[k - 1]);
  if (k + 1 < terms) gap = std::min(gap, std::abs(centres[k + 1] - centres[k]));
  return gap * gap;
}

// The way that the centres of an input may go from `before`.
void LimitSteps(const double* before, double* centres, int terms) {
  for (int k = 0; k < terms; ++k) {
    const double left = before[k] - before[k > 0 ? k - 1 : 1];
    const double right = before[k + 1 < terms ? k + 1 : k - 1] - before[k];
    const double most = before[k] + std::abs(right) / 100;
    centres[k] = std::clamp(centres[k], before[k] - std::abs(left) / 100, most);
  }
}

struct TSettings {
  double rate, momentum, forgetting;
  int rows;  // a batch, or one row and an update by it
};

// All changes agree to a millionth of the learning rate, and so do all derivatives.
TEST(TTarnBPTest, DescendsTheGradientOfEveryWeight) {
  Random::Seed(21);
  const TSettings kCases[] = {{1e-5, 0.0, 0.0, 37}, {0.5, 0.0, 0.0, 1},   {1e-4, 0.8, 0.0, 1},
                              {5e-5, 0.7, 0.0, 4},  {1e-4, 0.4, 0.05, 1}, {0.1, 0.0, 0.05, 3}};
  for (int n = 0; n < 60; ++n) {
    ForceKernels(static_cast<TKernelLevel>(n / 20));
    const TSettings& s = kCases[n % 6];
    const auto tarn = MakeTarn(1 + n % 3, 1 + n % 2);
    std::vector<TMask> flags(tarn->GetNumWeights(FMaskAll));
    for (TMask& flag : flags) flag = Random::Below(4) == 0 ? FMaskExists : FMaskAll;
    TIterateObjSetFlags set(flags, FMaskAll);
    tarn->Iterate(set);
    const auto data = MakePatterns(s.rows, 1 + n % 3, 1 + n % 2, -0.1, 1.1);
    const std::string rate = std::to_string(s.rate);
    TKQstructure params =
        Params(rate + " :MOMENTUM " + std::to_string(s.momentum) + " :BATCH " +
               (s.rows > 1 ? "TRUE" : "no") + " :WEIGHTPENALTY (LWF :FORGETTINGRATE " +
               std::to_string(s.forgetting) + " :LEARNINGRATE " + rate + ")");
    TTarnLWF trainer(tarn);
    TValues changes(flags.size());
    const std::size_t rules = tarn->GetWeightLayer(1).size();  // begin of the weights into rules
    const std::size_t outputs = flags.size() - tarn->GetWeightLayer(4).size();
    for (int epoch = 0; epoch < 4; ++epoch) {
      TTarn expected(*tarn);
      const TValues before = tarn->GetWeights(FMaskAll);
      TValues weights = before;
      TValues gradient = Gradient(*tarn, *data);
      std::size_t begin = 0;
      for (const int terms : tarn->InputMF()) {
        for (int k = 0; k < terms; ++k) {
          gradient[begin + static_cast<std::size_t>(k)] *= SquaredGap(&before[begin], k, terms);
        }
        begin += static_cast<std::size_t>(terms);
      }
      for (std::size_t i = 0; i < weights.size(); ++i) {
        const double pull = i < rules || i >= outputs ? 0.0 : s.forgetting * s.forgetting;
        if (flags[i] != FMaskAll) continue;
        changes[i] *= s.momentum;
        changes[i] -= s.rate * gradient[i] + std::copysign(pull, weights[i]);
        weights[i] += changes[i];
      }
      std::size_t first = 0;
      for (const int terms : tarn->InputMF()) {
        LimitSteps(&before[first], &weights[first], terms);
        first += static_cast<std::size_t>(terms);
      }
      expected.SetWeights(weights, FMaskAll);
      for (const std::size_t layer : {TTarn::kConditionLayer, TTarn::kOutputLayer}) {
        TValues distances(expected.Centres(layer).Weights().size());
        tarn->Centres(layer).MeasureDistances(distances);
        expected.Centres(layer).PutInOrder(distances);
      }
      double error = SquaredError(*tarn, *data);
      for (std::size_t i = rules; i < outputs; ++i) {
        error += s.rate * s.forgetting * std::abs(weights[i]);
      }
      EXPECT_NEAR(std::sqrt(error / data->Outputs() / s.rows), trainer.Epoch(*data, params), 1e-9);
      for (std::size_t i = 0; i < weights.size(); ++i) {
        ASSERT_NEAR(expected.GetWeights(FMaskAll)[i], tarn->GetWeights(FMaskAll)[i], 1e-6 * s.rate);
      }
    }
  }
}

TEST(TTarnBPTest, StaysFuzzyAtAnyRate) {
  Random::Seed(31);
  for (const char* settings : {"20", "5 :MOMENTUM 0.95", "3 :MOMENTUM 0.5 :BATCH TRUE"}) {
    const auto tarn = MakeTarn(3, 2);
    const auto data = MakePatterns(50, 3, 2, -0.1, 1.1);
    TKQstructure params = Params(settings);
    TTarnBP trainer(tarn);
    TValues output(2);
    for (int epoch = 0; epoch < 2000; ++epoch) {  // 100000 patterns
      trainer.Epoch(*data, params);
      tarn->RecallPattern(data->Row(epoch % 50).Inputs, output);
      for (const double value : output) ASSERT_TRUE(value >= 0.0 && value <= 1.0);
      const auto memberships = tarn->Layer(TTarn::kConditionLayer).Outputs();
      ASSERT_NEAR(std::accumulate(memberships.begin(), memberships.end(), 0.0), 3.0, 1e-12);
    }
  }
}

// Training that fails half-way, and training that is refused, leave nothing behind.
TEST(TTarnBPTest, ChangesAllOrNothing) {
  const auto data = MakePatterns(20, 2, 1, 2.0, 3.0);
  const auto tarn = std::make_shared<TTarn>(TSizes{2, 2}, 3, TSizes{2});
  tarn->SetWeightValue(4, 1, 0, 1.9);  // far enough for outputs beyond 1, soon
  tarn->FreezeWeight(4, 1, 0);
  const TValues weights = tarn->GetWeights(FMaskAll);
  TTarnBP trainer(tarn);
  std::vector<std::string> printed;
  const std::string outside = "(ActActivation >= 0) && (ActActivation <= 1)";
  for (const auto& [settings, expression] :
       {std::pair{"1 :MOMENTUM 0.5", outside},
        {"1 :MOMENTUM 0.5", outside},
        {"1e308", outside},
        {"1 :ERRORFUNCTION CROSSENTROPY", "fn == ActSigmoid"}}) {
    TKQstructure params = Params(settings);
    int epochs = 100;
    testing::internal::CaptureStdout();
    const std::string failure = Failure([&] { trainer.Train(*data, params, epochs); });
    printed.push_back(testing::internal::GetCapturedStdout());
    EXPECT_TRUE(failure.starts_with("Assertion failed: " + expression + ",")) << failure;
    EXPECT_EQ(weights, tarn->GetWeights(FMaskAll)) << settings;
  }
  EXPECT_EQ(printed[0], printed[1]);  // no change is remembered
}

}  // namespace
}  // namespace kiln
