#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/TBackpropModule.h"
#include "NeuralNets/TGainLayer.h"
#include "Shared/NumberFormat.h"

namespace kiln {
namespace {

// --- A slow trainer, connection by connection ------------------------------------------------

struct TLink {
  double weight, gradient = 0.0, change = 0.0;
  bool trainable;
};

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

class TSlowTrainer {
 public:
  explicit TSlowTrainer(TBasicNetwork& network) : network_(network) {
    for (std::size_t l = 0; l < network.NumLayers(); ++l) {
      const auto outputs = network.Layer(l).Outputs();
      outputs_.emplace_back(outputs.begin(), outputs.end());
      for (std::size_t k = 0; k < network.NumLayers(); ++k) AddLinks(l, k);
    }
  }

  double Epoch(const Data& data, const TSettings& s) {
    double error = 0.0;
    const int rows = data.DataRows();
    ClearGradients();
    for (int n = 0; n < rows; ++n) {
      if (!s.batch) ClearGradients();
      error += Pattern(data.Row(n), s);
      if (!s.batch) Update(s, 1.0 / rows);
    }
    if (s.batch) Update(s, 1.0);
    double penalty = 0.0;
    for (const auto& [place, link] : links_) penalty += Price(link.weight, s);
    return s.entropy ? error + penalty
                     : std::sqrt((error + penalty) / double(outputs_.back().size()) / rows);
  }

  void ExpectSameWeights() const {
    for (const auto& [place, link] : links_) {
      const auto& [to, from, i, j] = place;
      EXPECT_NEAR(link.weight, network_.Connections(to, from).GetWeight(i, j), 1e-9)
          << to << from << i << j;
    }
  }

 private:
  using TPlace = std::tuple<std::size_t, std::size_t, std::size_t, std::size_t>;

  void AddLinks(std::size_t to, std::size_t from) {
    const TBasicConnections& block = network_.Connections(to, from);
    for (std::size_t i = 0; i < network_.Layer(to).NumNeurons(); ++i) {
      for (std::size_t j = 0; j < network_.Layer(from).NumNeurons(); ++j) {
        if (!block.Exists(i, j)) continue;
        links_[{to, from, i, j}] = {.weight = block.GetWeight(i, j),
                                    .trainable = block.IsTrainable(i, j)};
      }
    }
  }

  void ClearGradients() {
    for (auto& [place, link] : links_) link.gradient = 0.0;
  }

  // Output and derivative by net input of a neuron whose net input is x.
  std::pair<double, double> Activation(std::size_t layer, std::size_t i, double x) const {
    const TActFunction f = network_.Layer(layer).GetActivation();
    const bool gain = f == ActLinearGain || f == ActSigmoidGain || f == ActTanhGain;
    const double g = gain ? network_.Layer(layer).Neuron(i).Gain() : 1.0;
    if (f == ActBias) return {1.0, 0.0};
    if (f == ActLinear || f == ActLinearGain) return {g * x, g};
    const double tanh = std::tanh(g * x);
    if (f == ActTanh || f == ActTanhGain) return {tanh, g * (1.0 - tanh * tanh)};
    const double y = 1.0 / (1.0 + std::exp(-g * x));
    return {y, g * y * (1.0 - y)};
  }

  double Pattern(const DataRow& row, const TSettings& s) {
    std::vector<TValues> slopes = outputs_;
    for (std::size_t l = 0; l < outputs_.size(); ++l) {
      TValues net(outputs_[l].size(), 0.0);
      for (const auto& [place, link] : links_) {
        const auto& [to, from, i, j] = place;
        if (to == l) net[i] += link.weight * outputs_[from][j];
      }
      if (l == 1) net.assign(row.Inputs.begin(), row.Inputs.end());
      for (std::size_t i = 0; i < net.size(); ++i) {
        std::tie(outputs_[l][i], slopes[l][i]) = Activation(l, i, net[i]);
      }
    }
    std::vector<TValues> errors = outputs_;
    for (TValues& layer : errors) layer.assign(layer.size(), 0.0);
    double error = 0.0;
    for (std::size_t i = 0; i < row.Outputs.size(); ++i) {
      const double t = row.Outputs[i];
      const double y = outputs_.back()[i];
      errors.back()[i] = y - t;
      error += s.entropy ? -t * std::log(y) - (1 - t) * std::log(1 - y) : (t - y) * (t - y);
    }
    if (s.entropy) slopes.back().assign(slopes.back().size(), 1.0);
    for (std::size_t l = outputs_.size(); l-- > 0;) {
      for (auto& [place, link] : links_) {
        const auto& [to, from, i, j] = place;
        if (to != l || from >= to) continue;
        errors[from][j] += link.weight * errors[to][i] * slopes[to][i];
        link.gradient += outputs_[from][j] * errors[to][i] * slopes[to][i];
      }
    }
    return error;
  }

  void Update(const TSettings& s, double share) {
    for (auto& [place, link] : links_) {
      const double w = link.weight;
      const double root = s.beta * w * w + 1.0;
      link.gradient += share * s.rate * (s.epsilon1 * s.beta / root / root + s.epsilon2) * 2 * w;
      const double sign = w < 0.0 ? -1.0 : w > 0.0 ? 1.0 : 0.0;
      if (s.forgetting > 0.0) link.gradient += sign * s.forgetting * (s.forgetting / s.rate);
      if (!link.trainable) continue;
      link.change = s.momentum * link.change - s.rate * link.gradient;
      link.weight += link.change;
    }
  }

  static double Price(double w, const TSettings& s) {
    const double q = s.beta * w * w;
    return s.epsilon1 * q / (q + 1) + s.epsilon2 * w * w + s.rate * s.forgetting * std::abs(w);
  }

  TBasicNetwork& network_;
  std::vector<TValues> outputs_;
  std::map<TPlace, TLink> links_;
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
  TValues errors;
  int epochs = 20;
  const double last = trainer.Train(*data, params, epochs, [&](int, double error) {
    errors.push_back(error);
    return true;
  });
  ASSERT_EQ(20u, errors.size());
  for (const double error : errors) EXPECT_NEAR(slow.Epoch(*data, settings), error, 1e-9);
  EXPECT_EQ(errors.back(), last);
  slow.ExpectSameWeights();
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
    {"Entropy", {3, 4, 2}, "linear", "sigmoid", kEntropy},
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

// The gradient of a batch of rate 1 is what the weights lose.
TEST(TBackpropModuleTest, GradientsAgreeWithCentralDifferences) {
  for (const bool entropy : {false, true}) {
    for (const char* hidden : {"linear-gain", "sigmoid", "tanh", "sigmoid-gain", "tanh-gain"}) {
      const auto network = MakePerceptron({3, 4, 2}, true);
      network->Layer(2).SetActivation(TFnRegistry::Instance().Lookup(hidden));
      static_cast<TGainLayer&>(network->Layer(2)).SetGain(1.5);
      const auto data = MakePatterns(5, 3, 2, 0.1, 0.9);
      const auto error_of = [&](const TValues& weights) {
        network->SetWeights(weights, FMaskAll);
        TErrorRMSObj rms(2);
        TErrorCrossEntropyObj cross(2);
        if (entropy) return network->RecallError(data.get(), &cross);
        return 5.0 * std::pow(network->RecallError(data.get(), &rms), 2);
      };
      TValues weights = network->GetWeights(FMaskAll);
      TValues differences;
      for (double& weight : weights) {
        constexpr double kStep = 1e-5;
        weight += kStep;
        const double above = error_of(weights);
        weight -= 2 * kStep;
        differences.push_back((above - error_of(weights)) / (2 * kStep));
        weight += kStep;
      }
      network->SetWeights(weights, FMaskAll);
      TKQstructure params = TKQstructure::Parse("(Params :LEARNINGRATE 1 :BATCH TRUE)");
      params.SetString("ERRORFUNCTION", entropy ? "CROSSENTROPY" : "MEANSQUAREDERROR");
      TBackpropModule(network).Epoch(*data, params);
      const TValues trained = network->GetWeights(FMaskAll);
      for (std::size_t i = 0; i < weights.size(); ++i) {
        EXPECT_NEAR(differences[i], weights[i] - trained[i], 1e-8) << hidden << i;
      }
    }
  }
}

// --- The loop over epochs --------------------------------------------------------------------

TEST(TTrainModuleTest, EndsEarlyOneBehindTheEpochsRun) {
  const auto network = MakePerceptron({2, 3, 1}, true);
  const auto data = MakePatterns(4, 2, 1, 0.0, 1.0);
  TBackpropModule trainer(network);
  TKQstructure params;
  int epochs = 0;
  EXPECT_EQ(0.0, trainer.Train(*data, params, epochs));
  EXPECT_EQ("NONE", params.DerefThrow("WeightPenalty").Name());
  // Without a learning rate nothing moves, and every epoch has the same error.
  const TValues weights = network->GetWeights(FMaskAll);
  int calls = 0;
  const auto count = [&](int, double) { return ++calls < 3; };
  epochs = 9;
  const double error = trainer.Train(*data, params, epochs, count);
  EXPECT_EQ(2, epochs);
  const auto set_threshold = [&](double value) {
    std::string text;
    AppendShortest(text, value);
    params.SetString("Threshold", text);
  };
  set_threshold(error);
  epochs = 2;
  trainer.Train(*data, params, epochs);
  EXPECT_EQ(2, epochs);
  set_threshold(std::nextafter(error, 1e9));
  epochs = 9;
  EXPECT_EQ(error, trainer.Train(*data, params, epochs, count));
  EXPECT_EQ(0, epochs);
  EXPECT_EQ(weights, network->GetWeights(FMaskAll));
}

TEST(TTrainModuleTest, RemembersTheLastChangesFromCallToCall) {
  const auto once = MakePerceptron({2, 3, 1}, true);
  const auto twice = std::make_shared<TMLPNetwork>(*once);
  const auto data = MakePatterns(4, 2, 1, 0.0, 1.0);
  TKQstructure params = TKQstructure::Parse("(Params :LEARNINGRATE 0.4 :MOMENTUM 0.9)");
  int epochs = 2;
  TBackpropModule(once).Train(*data, params, epochs);
  TBackpropModule trainer(twice);
  trainer.Epoch(*data, params);
  trainer.Epoch(*data, params);
  EXPECT_EQ(once->GetWeights(FMaskAll), twice->GetWeights(FMaskAll));
}

TEST(TTrainModuleTest, RefusesBeforeAnyWeightChanges) {
  constexpr char kModule[] = "NeuralNets/TTrainModule";
  const auto data = MakePatterns(4, 2, 1, 0.0, 1.0);
  const auto network = MakePerceptron({2, 3, 1}, true);
  const TValues weights = network->GetWeights(FMaskAll);
  const auto train = [&](const std::string& settings, const Data& set) {
    TKQstructure params = TKQstructure::Parse("(Params :LEARNINGRATE 1 " + settings + ")");
    return WhatOf([&] { TBackpropModule(network).Epoch(set, params); });
  };
  EXPECT_EQ(AssertionText("false", kModule, 108), train(":ERRORFUNCTION ABS", *data));
  EXPECT_EQ(AssertionText("false", kModule, 355), train(":WEIGHTPENALTY DECAY", *data));
  EXPECT_EQ(0u, train(":MOMENTUM much", *data).find("much is not a double"));
  EXPECT_NE("", train("", *MakePatterns(4, 3, 1, 0.0, 1.0)));
  EXPECT_NE("", train("", Data(4, 2, 1, false)));
  network->Layer(3).SetActivation(ActTanh);
  EXPECT_EQ(AssertionText("fn == ActSigmoid", kModule, 399),
            train(":ERRORFUNCTION CROSSENTROPY", *data));
  network->Layer(2).SetActivation(ActSaturatedLinear);
  EXPECT_EQ(AssertionText("fn != ActError", kModule, 443), train("", *data));
  network->Layer(2).Neuron(1).SetActivation(ActTanh);
  EXPECT_EQ(AssertionText("fn!= NULL", kModule, 395), train("", *data));
  EXPECT_EQ(weights, network->GetWeights(FMaskAll));
}

}  // namespace
}  // namespace kiln
