#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "NeuralNets/Training/TLevenbergPass.h"
#include "Tarn/TTarnBP.h"
#include "Tarn/TTarnPass.h"

namespace kiln {
namespace {

double TrainFor(TTrainModule& trainer, const Data& data, const std::string& settings, int epochs) {
  TKQstructure params = TKQstructure::Parse("(P " + settings + ")");
  return trainer.Train(data, params, epochs);
}

// --- Slow methods, on numbers that are measured ----------------------------------------------

class TSlowMethods {
 public:
  TSlowMethods(const TBasicNetwork& network, const Data& data)
      : network_(network.Clone()), data_(data) {
    for (std::size_t from = 0; from < network.NumLayers(); ++from) {
      for (std::size_t to = 0; to < network.NumLayers(); ++to) {
        TBasicConnections& block = network_->Connections(to, from);
        for (std::size_t n = 0; n < block.Weights().size(); ++n) {
          if (!block.IsTrainable(n / block.Columns(), n % block.Columns())) continue;
          if (block.Exists(n / block.Columns(), n % block.Columns())) {
            weights_.push_back(&block.Weights()[n]);
          }
        }
      }
    }
    const std::size_t size = weights_.size();
    steps_.assign(size, 0.1);
    for (TValues* values : {&last_, &before_, &means_, &squares_}) values->assign(size, 0.0);
  }

  double epsilon = 0.0;     // the price of a weight is epsilon w^2 / (w^2 + 1) ...
  double forgetting = 0.0;  // ... and forgetting |w|

  TValues Weights() const { return network_->GetWeights(FMaskAll); }

  void Rprop() {
    const TValues gradient = Gradient(0, data_.DataRows());
    const double price = Price();
    for (std::size_t i = 0; i < weights_.size(); ++i) {
      const double sign = gradient[i] > 0 ? 1 : -1;
      if (gradient[i] * last_[i] < 0) {
        steps_[i] *= 0.5;
        if (price > last_price_) *weights_[i] = before_[i];
        last_[i] = 0;
      } else {
        if (gradient[i] * last_[i] > 0) steps_[i] = std::min(steps_[i] * 1.2, 0.3);
        before_[i] = *weights_[i];
        *weights_[i] -= sign * steps_[i];
        last_[i] = gradient[i];
      }
    }
    last_price_ = price;
  }

  void Adam(int batch, double rate, double b1, double b2, double e) {
    for (int first = 0; first < data_.DataRows(); first += batch) {
      const int last = std::min(first + batch, data_.DataRows());
      const TValues gradient = Gradient(first, last);
      ++updates_;
      for (std::size_t i = 0; i < weights_.size(); ++i) {
        const double g = gradient[i] / (last - first);
        means_[i] = b1 * means_[i] + (1 - b1) * g;
        squares_[i] = b2 * squares_[i] + (1 - b2) * g * g;
        const double mean = means_[i] / (1 - std::pow(b1, updates_));
        const double square = squares_[i] / (1 - std::pow(b2, updates_));
        *weights_[i] -= rate * mean / (std::sqrt(square) + e);
      }
    }
  }

  void Levenberg() {
    const std::size_t size = weights_.size();
    std::vector<TValues> columns;
    const TValues residuals = Residuals();
    for (std::size_t i = 0; i < size; ++i) {
      columns.push_back(Derivative(i, [this] { return Residuals(); }));
    }
    std::vector<TValues> matrix(size, TValues(size));
    TValues right(size);
    double mean = 0;
    for (std::size_t i = 0; i < size; ++i) {
      for (std::size_t r = 0; r < residuals.size(); ++r) {
        right[i] += columns[i][r] * residuals[r];
        for (std::size_t j = 0; j < size; ++j) matrix[i][j] += columns[i][r] * columns[j][r];
      }
      right[i] += Sign(*weights_[i]) * forgetting;
      mean += matrix[i][i] / static_cast<double>(size);
    }
    const double price = Price();
    TValues start;
    for (const double* weight : weights_) start.push_back(*weight);
    for (double raise = 2;; damping_ *= raise, raise *= 2) {
      std::vector<TValues> damped = matrix;
      for (std::size_t i = 0; i < size; ++i) damped[i][i] += damping_ * (matrix[i][i] + mean / 10);
      const TValues step = Solve(damped, right);
      for (std::size_t i = 0; i < size; ++i) {
        const double end = start[i] - step[i];
        *weights_[i] = forgetting > 0 && end * start[i] < 0 ? 0 : end;
      }
      if (Price() < price) break;
    }
    damping_ /= 3;
  }

 private:
  static double Sign(double w) { return w > 0 ? 1 : w < 0 ? -1 : 0; }

  // Of the rows, and of the weights under a quadratic price.
  TValues Residuals() {
    TValues residuals;
    for (int n = 0; n < data_.DataRows(); ++n) {
      TValues outputs(network_->NumOutputs());
      network_->RecallPattern(data_.Row(n).Inputs, outputs);
      for (std::size_t o = 0; o < outputs.size(); ++o) {
        residuals.push_back(outputs[o] - data_.Row(n).Outputs[o]);
      }
    }
    for (const double* w : weights_) {
      residuals.push_back(Sign(*w) * std::sqrt(2 * epsilon * *w * *w / (*w * *w + 1)));
    }
    return residuals;
  }

  double Price() {
    double price = 0;
    for (const double r : Residuals()) price += r * r / 2;
    for (const double* w : weights_) price += forgetting * std::abs(*w);
    return price;
  }

  template <typename TFunction>
  TValues Derivative(std::size_t i, const TFunction& function) {
    const double weight = *weights_[i];
    *weights_[i] = weight + 1e-5;
    TValues above = function();
    *weights_[i] = weight - 1e-5;
    const TValues below = function();
    *weights_[i] = weight;
    for (std::size_t k = 0; k < above.size(); ++k) above[k] = (above[k] - below[k]) / 2e-5;
    return above;
  }

  // Of the price of some rows, and of the share of the other prices that goes with them.
  TValues Gradient(int first, int last) {
    const double share = static_cast<double>(last - first) / data_.DataRows();
    const std::size_t outputs = network_->NumOutputs();
    TValues gradient;
    for (std::size_t i = 0; i < weights_.size(); ++i) {
      const TValues half_squares = Derivative(i, [this] {
        TValues squares = Residuals();
        for (double& r : squares) r *= r / 2;
        return squares;
      });
      double sum = share * Sign(*weights_[i]) * forgetting;
      for (std::size_t k = 0; k < half_squares.size(); ++k) {
        const int row = static_cast<int>(k / outputs);
        if (row >= data_.DataRows()) sum += share * half_squares[k];
        if (row >= first && row < last) sum += half_squares[k];
      }
      gradient.push_back(sum);
    }
    return gradient;
  }

  // Gauss elimination.
  static TValues Solve(std::vector<TValues> a, TValues b) {
    const std::size_t size = b.size();
    for (std::size_t k = 0; k < size; ++k) {
      for (std::size_t i = 0; i < size; ++i) {
        if (i == k) continue;
        const double factor = a[i][k] / a[k][k];
        for (std::size_t j = k; j < size; ++j) a[i][j] -= factor * a[k][j];
        b[i] -= factor * b[k];
      }
    }
    for (std::size_t k = 0; k < size; ++k) b[k] /= a[k][k];
    return b;
  }

  std::unique_ptr<TBasicNetwork> network_;
  const Data& data_;
  std::vector<double*> weights_;  // those that learn
  TValues steps_, last_, before_, means_, squares_;
  double last_price_ = 1e300;
  int updates_ = 0;
  double damping_ = 0.1;
};

std::shared_ptr<TMLPNetwork> MakeSparse() {
  auto network = MakePerceptron({3, 4, 2}, true);
  network->Layer(2).SetActivation(ActTanh);
  network->Layer(3).SetActivation(ActLinear);
  network->Connections(2, 1).SetExists(0, 1, false);
  network->Connections(2, 1).SetTrainable(1, 0, false);
  network->Connections(3, 0).SetTrainable(1, 0, false);
  return network;
}

TEST(TrainMethodTest, EachGivesTheWeightsOfASlowTranscriptionStepByStep) {
  struct {
    const char* penalty;
    double epsilon, forgetting;
  } const kPenalties[] = {
      {"", 0.0, 0.0},
      {" :WeightPenalty (QuadPenalty :Epsilon1 0.03)", 0.03, 0.0},
      {" :WeightPenalty (LWF :ForgettingRate 0.1)", 0.0, 0.01},
  };
  Random::Seed(11);
  for (const auto& c : kPenalties) {
    const auto data = MakePatterns(7, 3, 2, -1.0, 1.0);
    for (const char* method : {"rprop", "adam", "levenberg"}) {
      const std::string word = method;
      const auto network = MakeSparse();
      TBackpropModule trainer(network);
      TSlowMethods slow(*network, *data);
      slow.epsilon = c.epsilon;
      slow.forgetting = c.forgetting;
      for (int epoch = 0; epoch < 12; ++epoch) {
        std::string settings = ":Method " + word + c.penalty + " :LargestStep 0.3 :batch 3";
        settings += " :LearningRate 0.02 :Beta1 0.8 :Beta2 0.95 :Epsilon 0.001";
        TrainFor(trainer, *data, settings, 1);
        if (word == "rprop") slow.Rprop();
        if (word == "adam") slow.Adam(3, 0.02, 0.8, 0.95, 0.001);
        if (word == "levenberg") slow.Levenberg();
        const TValues weights = network->GetWeights(FMaskAll);
        for (std::size_t i = 0; i < weights.size(); ++i) {
          ASSERT_NEAR(weights[i], slow.Weights()[i], 1e-6) << settings << ", epoch " << epoch;
        }
      }
    }
  }
}

// --- Derivatives -----------------------------------------------------------------------------

// Each output by each weight, on a few rows.
void ExpectDerivatives(TTrainState& state, TLayerwisePass& pass, const Data& data,
                       const std::string& name) {
  TBasicNetwork& network = *state.network;
  TValues outputs(network.NumOutputs());
  for (int n = 0; n < data.DataRows(); ++n) {
    for (std::size_t o = 0; o < outputs.size(); ++o) {
      pass.Recall(data.Row(n));
      state.gradients.Clear();
      pass.AddDerivatives(o);
      state.ForEachBlock([&](std::size_t to, std::size_t from) {
        const std::span<double> weights = network.Connections(to, from).Weights();
        for (std::size_t i = 0; i < weights.size(); ++i) {
          const double slope = Slope(weights[i], 1e-6, [&] {
            network.RecallPattern(data.Row(n).Inputs, outputs);
            return outputs[o];
          });
          ASSERT_NEAR(state.gradients.Block(to, from)[i], slope, 1e-6) << name << ", place " << i;
        }
      });
    }
  }
}

TEST(TrainMethodTest, DerivativesOfOutputsAgreeWithDifferences) {
  Random::Seed(5);
  TKQstructure params = TKQstructure::Parse("(P :Method levenberg)");
  for (const char* name :
       {"linear", "sigmoid", "tanh", "linear-gain", "sigmoid-gain", "tanh-gain"}) {
    const auto data = MakePatterns(4, 3, 2, -1.0, 1.0);
    const auto network = MakePerceptron({3, 5, 4, 2}, true);
    for (std::size_t l = 2; l <= 4; ++l) {
      network->Layer(l).SetActivation(TFnRegistry::Instance().Lookup(name));
      network->Layer(l).Neuron(1).SetParameter(0, 0.7);
    }
    TTrainState state(network);
    const TTrainRun run(params, *data);
    TLayerwisePass pass(state, run);
    ExpectDerivatives(state, pass, *data, name);
  }
  const auto data = MakePatterns(20, 2, 2, -0.1, 1.1);
  const auto tarn = std::make_shared<TTarn>(TSizes{3, 4}, 5, TSizes{3, 2});
  tarn->InitWeights(-2.0, 2.0);
  TTrainState state(tarn);
  const TTrainRun run(params, *data);
  TCentreSteps steps(*tarn);
  TTarnPass pass(state, run, steps);
  ExpectDerivatives(state, pass, *data, "Tarn");
}

// --- Training --------------------------------------------------------------------------------

TEST(TrainMethodTest, AwkwardDataAndAllMethodsGiveNumbers) {
  Random::Seed(9);
  const auto fill = [](int rows, const auto& value) {
    auto data = std::make_unique<Data>(rows, 2, 1, false);
    for (int n = 0; n < rows; ++n) data->AddRow(TValues{value(n), 0.3}, TValues{value(n + 1)});
    return data;
  };
  std::vector<std::unique_ptr<Data>> sets;
  sets.push_back(fill(6, [](int) { return 0.5; }));              // constant, rows alike
  sets.push_back(fill(1, [](int n) { return 0.2 + 0.1 * n; }));  // more weights than rows
  sets.push_back(fill(9, [](int n) { return n % 2 * 0.7; }));    // alike, two by two
  sets.push_back(fill(5, [](int n) { return n * 1e6; }));
  sets.push_back(fill(5, [](int n) { return n * 1e-9; }));
  for (const auto& data : sets) {
    for (const char* settings : {":Method rprop", ":Method adam", ":Method levenberg",
                                 ":Method levenberg :WeightPenalty (LWF :ForgettingRate 0.1)"}) {
      const auto network = MakePerceptron({2, 5, 1}, true);
      network->Layer(3).SetActivation(ActLinear);
      TBackpropModule trainer(network);
      const double start = ErrorOn(*network, *data);
      TrainFor(trainer, *data, settings, 60);
      EXPECT_LE(ErrorOn(*network, *data), start) << settings;
      const auto tarn = std::make_shared<TTarn>(TSizes{3, 3}, 4, TSizes{3});
      tarn->InitWeights(-1.0, 1.0);
      TTarnBP tarn_trainer(tarn);
      const double tarn_start = ErrorOn(*tarn, *data);
      TrainFor(tarn_trainer, *data, settings, 60);
      EXPECT_LE(ErrorOn(*tarn, *data), tarn_start * 1.01) << settings;
    }
  }
}

TEST(TrainMethodTest, WhatAMethodRemembersStaysUntilTheMethodChanges) {
  const auto data = MakePatterns(20, 3, 2, 0.1, 0.9);
  const auto weights_after = [&](std::initializer_list<std::pair<const char*, int>> calls) {
    Random::Seed(2);
    const auto network = MakePerceptron({3, 4, 2}, true);
    TBackpropModule trainer(network);
    for (const auto& [settings, epochs] : calls) TrainFor(trainer, *data, settings, epochs);
    return network->GetWeights(FMaskAll);
  };
  constexpr char kGradient[] = ":LearningRate 0.1 :Momentum 0.9";
  for (const char* method : {":Method rprop", ":Method ADAM", ":Method levenberg", kGradient}) {
    const char* other = method == kGradient ? ":Method rprop" : kGradient;
    const TValues whole = weights_after({{method, 8}});
    EXPECT_EQ(weights_after({{method, 4}, {method, 4}}), whole) << method;
    EXPECT_NE(weights_after({{method, 4}, {other, 0}, {method, 4}}), whole) << method;
  }
}

TEST(TrainMethodTest, RefusesWhatItCannotDoBeforeAnythingChanges) {
  const auto data = MakePatterns(3, 2, 1, 0.1, 0.9);
  const auto refusal = [&](const TSizes& sizes, const char* settings) {
    const auto network = MakePerceptron(sizes, true);
    TBackpropModule trainer(network);
    const TValues before = network->GetWeights(FMaskAll);
    const std::string text = Failure([&] { TrainFor(trainer, *data, settings, 1); });
    EXPECT_EQ(network->GetWeights(FMaskAll), before) << settings;
    return text.substr(0, text.find(" Invalid Parameter"));
  };
  // 4 n + 1 weights: 11589 rows of as many numbers are more than 2^27.
  EXPECT_EQ(refusal({2, 2897, 1}, ":Method levenberg"),
            "method levenberg would take a matrix of 11589 x 11589 numbers for 11589 weights: use "
            "rprop or adam");
  EXPECT_EQ(refusal({2, 3, 1}, ":Method levenberg :ErrorFunction CrossEntropy"),
            "method levenberg minimises squares, not cross entropy: use rprop or adam");
  EXPECT_EQ(refusal({2, 3, 1}, ":Method adam :Beta2 1"), "Beta2 must be at least 0 and below 1");
  EXPECT_EQ(refusal({2, 3, 1}, ":Method newton"),
            "unknown method newton: gradient, rprop, adam or levenberg");
}

}  // namespace
}  // namespace kiln
