#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "NeuralNets/Training/TBlockPass.h"
#include "NeuralNets/Training/TLayerwisePass.h"
#include "NeuralNets/Training/TPatternPass.h"
#include "NeuralNets/Training/TSmallPass.h"
#include "Shared/NumberFormat.h"

namespace kiln {
namespace {

// --- A slow trainer, weight by weight --------------------------------------------------------

struct TSettings {
  explicit TSettings(const TKQstructure& params)
      : rate(Number(&params, "LearningRate")),
        momentum(Number(&params, "Momentum")),
        batch(params.Deref("batch") != nullptr),
        entropy(params.Deref("ErrorFunction") != nullptr),
        epsilon1(Number(params.Deref("WeightPenalty"), "Epsilon1")),
        epsilon2(Number(params.Deref("WeightPenalty"), "Epsilon2")),
        beta(Number(params.Deref("WeightPenalty"), "Beta")),
        forgetting(Number(params.Deref("WeightPenalty"), "ForgettingRate")) {}

  static double Number(const TKQstructure* message, const char* keyword) {
    const TKQstructure* value = message != nullptr ? message->Deref(keyword) : nullptr;
    return value != nullptr ? std::stod(value->Name()) : 0.0;
  }

  double rate, momentum;
  bool batch, entropy;
  double epsilon1, epsilon2, beta, forgetting;
};

// Follows the rules of updates and penalties with gradients that are measured: a central difference
// of the error of a pattern for each weight.
class TSlowTrainer {
 public:
  explicit TSlowTrainer(const TBasicNetwork& network) : network_(network.Clone()) {
    for (std::size_t from = 0; from < network.NumLayers(); ++from) {
      for (std::size_t to = 0; to < network.NumLayers(); ++to) AddLinks(to, from);
    }
    Remember();
  }

  double Epoch(const Data& data, const TSettings& s) {
    double error = 0.0;
    const int rows = data.DataRows();
    for (int n = 0; n < rows; ++n) {
      for (TLink& link : links_) link.gradient += Gradient(link, data.Row(n), s);
      error += PatternError(data.Row(n), s);
      Remember();
      if (!s.batch) Update(s, 1.0 / rows);
    }
    if (s.batch) Update(s, 1.0);
    for (const TLink& link : links_) error += Penalty(*link.weight, s);
    return s.entropy ? error : std::sqrt(error / data.Outputs() / rows);
  }

  TValues Weights() const { return network_->GetWeights(FMaskExists); }

 private:
  struct TLink {
    double* weight;
    bool leads_back, trainable;
    double gradient = 0.0, change = 0.0;
  };

  void AddLinks(std::size_t to, std::size_t from) {
    TBasicConnections& block = network_->Connections(to, from);
    for (std::size_t n = 0; n < block.Weights().size(); ++n) {
      const std::size_t i = n / block.Columns(), j = n % block.Columns();
      if (!block.Exists(i, j)) continue;
      links_.push_back({&block.Weights()[n], from >= to, block.IsTrainable(i, j)});
    }
  }

  std::span<double> Outputs() { return network_->Layer(network_->OutputLayer()).Outputs(); }

  // What connections that lead back will see.
  void Remember() { memory_.assign(Outputs().begin(), Outputs().end()); }

  double PatternError(const DataRow& row, const TSettings& s) {
    std::ranges::copy(memory_, Outputs().begin());
    TValues outputs(memory_.size());
    network_->RecallPattern(row.Inputs, outputs);
    double error = 0.0;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
      const double t = row.Outputs[i], y = outputs[i];
      error += s.entropy ? -t * std::log(y) - (1 - t) * std::log(1 - y) : (t - y) * (t - y);
    }
    return error;
  }

  // Of half the error, where that is a square. Connections that lead back have none.
  double Gradient(const TLink& link, const DataRow& row, const TSettings& s) {
    if (link.leads_back) return 0.0;
    const double slope = Slope(*link.weight, 1e-5, [&] { return PatternError(row, s); });
    return s.entropy ? slope : slope / 2;
  }

  void Update(const TSettings& s, double share) {
    for (TLink& link : links_) {
      const double w = *link.weight;
      const double root = s.beta * w * w + 1.0;
      double gradient = std::exchange(link.gradient, 0.0);
      gradient += share * s.rate * (s.epsilon1 * s.beta / root / root + s.epsilon2) * 2 * w;
      const double sign = w < 0.0 ? -1.0 : w > 0.0 ? 1.0 : 0.0;
      if (s.forgetting > 0.0) gradient += sign * s.forgetting * (s.forgetting / s.rate);
      if (!link.trainable) continue;
      link.change = s.momentum * link.change - s.rate * gradient;
      *link.weight += link.change;
    }
  }

  static double Penalty(double w, const TSettings& s) {
    const double q = s.beta * w * w;
    return s.epsilon1 * q / (q + 1) + s.epsilon2 * w * w + s.rate * s.forgetting * std::abs(w);
  }

  std::unique_ptr<TBasicNetwork> network_;
  std::vector<TLink> links_;
  TValues memory_;
};

// --- Training against it ---------------------------------------------------------------------

enum TExtras { kNothing = 0, kSparse = 1, kRecurrent = 2 };

struct TCase {
  const char* name;
  TSizes sizes;
  const char* hidden;  // functions of the layers
  const char* output;
  const char* params;
  int extras = kNothing;  // some connections pruned, some frozen; a block that leads back
};

void PrintTo(const TCase& c, std::ostream* out) {
  *out << c.name;
}

class TTrainingTest : public testing::TestWithParam<TCase> {
 protected:
  static std::shared_ptr<TMLPNetwork> MakeNetwork(const TCase& c) {
    auto network = MakePerceptron(c.sizes, c.sizes.front() != 4);
    const TFnRegistry& registry = TFnRegistry::Instance();
    for (std::size_t l = 2; l < network->NumLayers(); ++l) {
      const bool is_last = l == network->OutputLayer();
      network->Layer(l).SetActivation(registry.Lookup(is_last ? c.output : c.hidden));
      for (std::size_t i = 0; i < network->Layer(l).NumNeurons(); ++i) {
        network->Layer(l).Neuron(i).SetParameter(0, 0.5 + 0.25 * static_cast<double>(i));
      }
    }
    if ((c.extras & kRecurrent) != 0) network->Connect(3, 2);
    if ((c.extras & kSparse) != 0) {
      network->Connections(2, 1).SetExists(0, 1, false);
      network->Connections(2, 1).SetTrainable(1, 0, false);
      network->Connections(3, 2).SetExists(0, 0, false);
      network->Connections(3, 2).SetTrainable(0, 1, false);
    }
    network->Randomize(-1.0, 1.0);
    return network;
  }
};

TEST_P(TTrainingTest, GivesTheWeightsAndErrorsOfTheSlowTrainer) {
  const TCase& c = GetParam();
  Random::Seed(7);
  const auto network = MakeNetwork(c);
  TKQstructure params = TKQstructure::Parse(c.params);
  const TSettings settings(params);
  const int rows = settings.batch ? 45 : 6;
  const auto data = MakePatterns(rows, c.sizes.front(), c.sizes.back(), 0.1, 0.9);
  TSlowTrainer slow(*network);
  TBackpropModule trainer(network);
  for (int epoch = 0; epoch < 20; ++epoch) {
    ASSERT_NEAR(slow.Epoch(*data, settings), trainer.Epoch(*data, params), 1e-7) << epoch;
  }
  const TValues weights = network->GetWeights(FMaskExists);
  for (std::size_t i = 0; i < weights.size(); ++i) {
    EXPECT_NEAR(slow.Weights()[i], weights[i], 1e-7) << i;
  }
}

// Networks of four inputs have no bias.
constexpr char kPlain[] = "(P :LearningRate 0.5)";
constexpr char kMomentum[] = "(P :LearningRate 0.3 :Momentum 0.9)";
constexpr char kBatch[] = "(P :LearningRate 0.02 :Momentum 0.5 :batch true)";
constexpr char kEntropy[] = "(P :LearningRate 0.2 :Momentum 0.5 :ErrorFunction CrossEntropy)";
constexpr char kQuadratic[] =
    "(P :LearningRate 0.5 :WeightPenalty (QuadPenalty :Epsilon1 0.3 :Epsilon2 0.2 :Beta 2))";
constexpr char kForgetting[] =
    "(P :LearningRate 0.5 :Momentum 0.5"
    " :WeightPenalty (LWF :ForgettingRate 0.01 :LearningRate 0.5))";
constexpr char kForgettingBatch[] =
    "(P :LearningRate 0.1 :batch true"
    " :WeightPenalty (LWF :ForgettingRate 0.01 :LearningRate 0.1))";

const TCase kCases[] = {
    {"Single", {4, 1}, "sigmoid", "linear", kPlain},
    {"Deep", {9, 17, 8, 5, 3}, "tanh", "sigmoid", kMomentum},
    {"Batch", {3, 4, 2}, "sigmoid", "linear", kBatch},
    {"BatchWide", {4, 33, 2}, "tanh", "tanh", kBatch},
    {"BatchDeep", {9, 17, 8, 5, 3}, "tanh", "sigmoid", kBatch},
    {"Gain", {3, 4, 4, 2}, "tanh-gain", "linear-gain", "(P :LearningRate 0.05 :Momentum 0.5)"},
    {"SigmoidGain", {3, 4, 4, 2}, "sigmoid-gain", "tanh-gain", kPlain},
    {"SigmoidGainBatch", {3, 4, 2}, "sigmoid-gain", "sigmoid-gain", kBatch},
    {"Entropy", {3, 4, 2}, "linear", "sigmoid", kEntropy},
    {"EntropyBatch",
     {3, 4, 2},
     "tanh-gain",
     "sigmoid",
     "(P :LearningRate 0.02 :batch true :ErrorFunction CrossEntropy)"},
    {"SparseMomentum", {3, 4, 2}, "sigmoid", "sigmoid", kMomentum, kSparse},
    {"SparseBatch", {3, 4, 2}, "sigmoid", "sigmoid", kBatch, kSparse},
    {"Quadratic", {3, 4, 2}, "sigmoid", "sigmoid", kQuadratic, kSparse},
    {"Forgetting", {3, 4, 2}, "sigmoid", "sigmoid", kForgetting, kSparse},
    {"ForgettingBatch", {3, 4, 2}, "sigmoid", "sigmoid", kForgettingBatch},
    {"Recurrent", {3, 4, 2}, "sigmoid", "sigmoid", kMomentum, kSparse | kRecurrent},
    {"RecurrentForgetting", {3, 4, 2}, "sigmoid", "sigmoid", kForgetting, kRecurrent},
    {"RecurrentBatch", {3, 4, 2}, "sigmoid", "sigmoid", kForgettingBatch, kRecurrent}};

INSTANTIATE_TEST_SUITE_P(All, TTrainingTest, testing::ValuesIn(kCases),
                         testing::PrintToStringParamName());

// Takes the layers one by one where its base knows a faster way.
class TLayerwiseTrainer : public TBackpropModule {
 public:
  using TBackpropModule::TBackpropModule;
  std::unique_ptr<TTrainPass> MakePass(TTrainState& state, const TTrainRun& run) override {
    return std::make_unique<TLayerwisePass>(state, run);
  }
};

TEST(TBackpropModuleTest, EveryPassTrainsAsTheLayersDoOneByOne) {
  constexpr char kSlowly[] = "(P :LearningRate 0.03 :Momentum 0.9)";  // fast, rounding would grow
  constexpr char kStill[] = "(P :LearningRate 0 :Momentum 1e100)";    // powers of it overflow
  const TKernels* const best = &Kernels();
  for (const TKernelLevel level :
       {TKernelLevel::kBaseline, TKernelLevel::kAvx2, TKernelLevel::kAvx512}) {
    if (!ForceKernels(level)) continue;
    ASSERT_EQ(KernelsOf(level), &Kernels());
    for (const TSizes& sizes : {TSizes{2, 1, 3},
                                {2, 4, 1},
                                {3, 2, 5, 9, 1},
                                {16, 33, 3, 8},
                                {60, 40, 3},
                                {49, 16, 90, 2},
                                {400, 328, 2}}) {
      for (const char* settings : {kPlain, kSlowly, kStill, kBatch, kEntropy, kForgetting}) {
        if (sizes[0] == 400 && settings != kBatch) continue;  // a large network in large blocks
        const auto network = MakePerceptron(sizes, true);
        if (sizes[1] == 1) network->RemoveNeuron(2, 0);  // a layer without neurons remains
        network->Randomize(-1.0, 1.0);
        const auto data = MakePatterns(140, sizes.front(), sizes.back(), 0.1, 0.9);
        const std::shared_ptr<TBasicNetwork> twin = network->Clone();
        TBackpropModule trainer(network);
        TLayerwiseTrainer layerwise(twin);
        for (int call = 0; call < 2; ++call) {  // the second goes on with the changes of the first
          TKQstructure params = TKQstructure::Parse(settings);
          int epochs = 2;
          const double error = trainer.Train(*data, params, epochs);
          EXPECT_NEAR(layerwise.Train(*data, params, epochs), error, 1e-11);
        }
        const TValues weights = network->GetWeights(FMaskAll);
        const TValues others = twin->GetWeights(FMaskAll);
        for (std::size_t i = 0; i < weights.size(); ++i) {
          ASSERT_NEAR(others[i], weights[i], 1e-11) << settings << ", place " << i;
        }
      }
    }
  }
  EXPECT_EQ(best, &Kernels());
}

// --- Which pass a network gets ----------------------------------------------------------------

class TPassAsker : public TBackpropModule {
 public:
  using TBackpropModule::TBackpropModule;

  // The class of the pass for a set of so many patterns, and how many patches it trains delayed.
  std::string Ask(const char* settings, int patterns) {
    TKQstructure params = TKQstructure::Parse(settings);
    const TTrainRun run(params, *MakePatterns(patterns, static_cast<int>(Network().NumInputs()),
                                              static_cast<int>(Network().NumOutputs()), 0, 1));
    const std::unique_ptr<TTrainPass> pass = MakePass(State(), run);
    if (dynamic_cast<TBlockPass*>(pass.get())) return "block";
    if (dynamic_cast<TSmallPass*>(pass.get())) return "small";
    const auto* listed = dynamic_cast<TPatternPass*>(pass.get());
    if (listed) return "pattern " + std::to_string(listed->NumDelayed());
    return "layerwise";
  }
};

// Limits, each from both sides.
TEST(TBackpropModuleTest, TakesTheFastestPassThatFits) {
  const auto ask = [](const std::shared_ptr<TBasicNetwork>& network, const char* settings,
                      int patterns) { return TPassAsker(network).Ask(settings, patterns); };
  const auto small = [] { return MakePerceptron({3, 4, 2}, true); };
  EXPECT_EQ(ask(small(), kMomentum, 1), "small");
  EXPECT_EQ(ask(small(), kForgetting, 9), "small");
  EXPECT_EQ(ask(MakePerceptron({31, 64}, true), kPlain, 9), "small");            // 2048 weights
  EXPECT_EQ(ask(MakePerceptron({31, 62, 1, 1}, true), kPlain, 9), "pattern 0");  // 2049
  EXPECT_EQ(ask(small(), kBatch, 4), "block");
  EXPECT_EQ(ask(small(), kBatch, 3), "layerwise");
  EXPECT_EQ(ask(small(), kQuadratic, 9), "layerwise");

  // What a network must not have for a pass is held by the comparison with the slow trainer.
  const auto altered = small();
  altered->Layer(2).SetActivation(ActTanh);
  altered->Connections(2, 1).SetTrainable(0, 0, false);
  EXPECT_EQ(ask(altered, kBatch, 9), "block");

  const auto wide = [](int inputs, int hidden) {
    return MakePerceptron({inputs, hidden, 90}, true);
  };
  constexpr char kHuge[] = "(P :LearningRate 0.1 :Momentum 1.1)";
  EXPECT_EQ(ask(wide(48, 16), kMomentum, 8), "pattern 1");
  EXPECT_EQ(ask(wide(48, 16), kMomentum, 7), "pattern 0");
  EXPECT_EQ(ask(wide(47, 17), kMomentum, 8), "pattern 0");
  EXPECT_EQ(ask(wide(64, 15), kMomentum, 8), "pattern 0");
  EXPECT_EQ(ask(wide(48, 16), kHuge, 8), "pattern 0");
  EXPECT_EQ(ask(wide(48, 16), kForgetting, 8), "pattern 0");
}

// --- The loop over epochs --------------------------------------------------------------------

TEST(TTrainModuleTest, EndsEarlyOneBehindTheEpochsRun) {
  const auto network = MakePerceptron({2, 3, 1}, true);
  const auto data = MakePatterns(4, 2, 1, 0.0, 1.0);
  TBackpropModule trainer(network);
  TKQstructure params;
  int epochs = 0;
  EXPECT_EQ(trainer.Train(*data, params, epochs), 0.0);
  EXPECT_EQ(params.DerefThrow("WeightPenalty").Name(), "NONE");
  // Without a learning rate nothing moves, and every epoch has the same error.
  const TValues weights = network->GetWeights(FMaskAll);
  int calls = 0;
  const auto count = [&](int, double) { return ++calls < 3; };
  epochs = 9;
  const double error = trainer.Train(*data, params, epochs, count);
  EXPECT_EQ(epochs, 2);
  const auto set_threshold = [&](double value) {
    std::string text;
    AppendShortest(text, value);
    params.SetString("Threshold", text);
  };
  set_threshold(error);
  epochs = 2;
  trainer.Train(*data, params, epochs);
  EXPECT_EQ(epochs, 2);
  set_threshold(std::nextafter(error, 1e9));
  epochs = 9;
  EXPECT_EQ(error, trainer.Train(*data, params, epochs, count));
  EXPECT_EQ(epochs, 0);
  EXPECT_EQ(weights, network->GetWeights(FMaskAll));
}

TEST(TTrainModuleTest, TrainsAroundAWeightThatWasInfiniteBefore) {
  const auto network = MakePerceptron({2, 3, 1}, true);
  network->Connections(2, 1).SetWeight(0, 0, std::numeric_limits<double>::infinity());
  const auto data = MakePatterns(4, 2, 1, 0.1, 1.0);
  TKQstructure params = TKQstructure::Parse("(Params :LEARNINGRATE 1)");
  TBackpropModule trainer(network);
  int epochs = 1;
  const double error = trainer.Train(*data, params, epochs);
  epochs = 9;
  EXPECT_LT(trainer.Train(*data, params, epochs), error);
  EXPECT_TRUE(std::isinf(network->Connections(2, 1).GetWeight(0, 0)));
}

TEST(TTrainModuleTest, RefusesBeforeAnyWeightChanges) {
  constexpr char kModule[] = "NeuralNets/TTrainModule";
  const auto data = MakePatterns(4, 2, 1, 0.0, 1.0);
  const auto network = MakePerceptron({2, 3, 1}, true);
  const TValues weights = network->GetWeights(FMaskAll);
  const auto train = [&](const std::string& settings, const Data& set) {
    TKQstructure params = TKQstructure::Parse("(Params :LEARNINGRATE 1 " + settings + ")");
    return Failure([&] { TBackpropModule(network).Epoch(set, params); });
  };
  TKQstructure none;
  EXPECT_EQ(Failure([&] { TTrainModule(network).Epoch(*data, none); }),
            AssertionText("false", kModule, 79));
  EXPECT_EQ(train(":ERRORFUNCTION ABS", *data), AssertionText("false", kModule, 108));
  EXPECT_EQ(train(":WEIGHTPENALTY DECAY", *data), AssertionText("false", kModule, 355));
  EXPECT_EQ(train(":MOMENTUM much", *data).find("much is not a double"), 0u);
  EXPECT_EQ(train("", *MakePatterns(4, 3, 1, 0.0, 1.0)).find("the data set has 3 inputs"), 0u);
  EXPECT_EQ(train("", Data(4, 2, 1, false)).find("the data set has no rows"), 0u);
  network->Layer(3).SetActivation(ActTanh);
  EXPECT_EQ(train(":ERRORFUNCTION CROSSENTROPY", *data),
            AssertionText("fn == ActSigmoid", kModule, 399));
  network->Layer(2).SetActivation(ActSaturatedLinear);
  EXPECT_EQ(train("", *data), AssertionText("fn != ActError", kModule, 443));
  network->Layer(2).Neuron(1).SetActivation(ActTanh);
  EXPECT_EQ(train("", *data), AssertionText("fn!= NULL", kModule, 395));
  EXPECT_EQ(weights, network->GetWeights(FMaskAll));
}

}  // namespace
}  // namespace kiln
