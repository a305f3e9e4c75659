#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>

#include "Export/CFile.h"
#include "Export/Identifiers.h"
#include "FileTestTools.h"
#include "Networks.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "Tarn/TTarn.h"

namespace kiln {
namespace {

using TFunction = void (*)(const double*, double*);

// A file of C, compiled and loaded.
class TCompiled {
 public:
  TCompiled(const std::string& source, const std::string& function) {
    const std::string library = source + ".so";
    const std::string command =
        std::string(KILN_TEST_COMPILER) + " -x c -std=c99 -pedantic -Wall -Wextra -Wconversion" +
        " -Werror -O2 -fPIC -shared -o '" + library + "' '" + source + "' -lm";
    EXPECT_EQ(std::system(command.c_str()), 0) << Contents(source);
    library_ = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    std::filesystem::remove(library);
    if (library_) function_ = reinterpret_cast<TFunction>(dlsym(library_, function.c_str()));
    EXPECT_TRUE(function_) << function;
  }
  ~TCompiled() {
    if (library_) dlclose(library_);
  }
  TCompiled(const TCompiled&) = delete;
  TCompiled& operator=(const TCompiled&) = delete;

  void operator()(const TValues& input, TValues& output) const {
    function_(input.data(), output.data());
  }
  explicit operator bool() const { return function_; }

 private:
  void* library_ = nullptr;
  TFunction function_ = nullptr;
};

class TCFileTest : public TFileTest {
 protected:
  // Compares the answers of the compiled file with recalls of thousands of rows.
  void ExpectSameAnswers(TBasicNetwork& network, const std::string& alias,
                         const std::string& function) {
    CFile::Save(path_, alias, network, {{"a */ b?\?/\n", "c"}, {}});
    const TCompiled compiled(path_, function);
    ASSERT_TRUE(compiled);
    TValues input(network.NumInputs()), expected(network.NumOutputs()), answer(expected);
    double worst = 0.0;
    for (int row = 0; row < 3000; ++row) {
      for (double& value : input) value = Random::Uniform(-0.5, 1.5) * (row % 100 == 0 ? 2000 : 1);
      network.RecallPattern(input, expected);
      answer = input;
      answer.resize(std::max(input.size(), expected.size()));
      compiled(answer, answer);
      for (std::size_t i = 0; i < expected.size(); ++i) {
        const double scale = std::max(1.0, std::abs(expected[i]));
        worst = std::max(worst, std::abs(answer[i] - expected[i]) / scale);
      }
    }
    EXPECT_LE(worst, 1e-12) << alias;
  }
};

TEST_F(TCFileTest, PerceptronsAnswerAsInARecall) {
  Random::Seed(3);
  ExpectSameAnswers(*MakePerceptron({4, 5, 3}, true), "iris", "iris");
  ExpectSameAnswers(*MakePerceptron({1, 1}, false), "exp", "exp_");
  // Every function, mixed in a layer and in others; gains in common and of their own; pruned
  // connections, some neurons without any; some that pass layers over; a layer that the output does
  // not depend on.
  const auto network = MakePerceptron({3, 8, 8, 2, 1}, true);
  network->SetInputAndOutputLayer(1, 4);
  int n = 0;
  for (const char* function : {"linear", "saturated-linear", "sigmoid", "tanh", "linear-gain",
                               "sigmoid-gain", "tanh-gain", "bias"}) {
    for (const std::size_t layer : {2U, 3U}) {
      TBasicNeuron& neuron =
          network->Layer(layer).Neuron(static_cast<std::size_t>(layer == 2 ? n : 7 - n));
      neuron.SetActivation(TFnRegistry::Instance().Lookup(function));
      if (layer == 3) neuron.SetParameter(0, 0.5 + n);
    }
    ++n;
  }
  network->Layer(4).SetActivation(ActTanhGain);
  network->Layer(4).Neuron(0).SetParameter(0, 0.25);
  for (const std::size_t from : {0U, 1U, 4U, 7U})
    network->Connections(3, 2).SetExists(2, from, false);
  for (std::size_t from = 0; from < 8; ++from) network->Connections(3, 2).SetExists(5, from, false);
  network->Connect(1, 4);
  for (const std::size_t from : {0U, 2U}) network->Connections(4, 1).SetWeight(0, from, 0.5);
  ExpectSameAnswers(*network, "1 odd näme", "n_1_odd_n__me");
}

TEST_F(TCFileTest, TarnsAndMapsAnswerAsInARecall) {
  Random::Seed(4);
  TTarn tarn(TSizes{2, 3, 5}, 4, TSizes{3, 2});
  tarn.InitWeights(-9.0, 9.0);
  for (const std::size_t k : {2U, 4U}) {  // centres that do not stand evenly, two of them as one
    TBasicConnections& block = tarn.Connections(k == 2 ? 2 : 5, k == 2 ? 1 : 4);
    for (double& centre : block.Weights()) centre *= centre;
  }
  tarn.SetWeightValue(1, 2, 7, tarn.GetWeightValue(1, 2, 6));
  tarn.SetWeightValue(3, 0, 0, -1e6);
  ExpectSameAnswers(tarn, "NAN", "NAN_");
  TKohonenNetwork map(2, {4, 3});
  map.Randomize(0.0, 1.0);
  ExpectSameAnswers(map, "som", "som");
}

TEST_F(TCFileTest, WhatHasAMemoryOrIsNoNumberIsRefused) {
  const auto network = MakePerceptron({2, 2, 1}, true);
  const auto save = [&] { CFile::Save(path_, "n", *network, {}); };
  network->Connections(2, 1).SetWeight(1, 1, std::numeric_limits<double>::infinity());
  EXPECT_EQ(Failure(save), "Weights that are no numbers Bad Network CFile::Save");
  network->Connect(3, 2);
  EXPECT_EQ(Failure(save), "Connections lead back Bad Network CFile::Save");
  const std::function<void(TMLPNetwork&)> changes[] = {
      [](TMLPNetwork& n) { n.Layer(2).SetActivation(ActTarnCondition); },
      [](TMLPNetwork& n) { n.Connect(0, 1); },
  };
  for (const auto& change : changes) {
    const auto odd = MakePerceptron({2, 2, 1}, true);
    change(*odd);
    EXPECT_EQ(Failure([&] { CFile::Save(path_, "n", *odd, {}); }),
              "Layer of a kind that C code cannot compute Bad Network CFile::Save");
  }
  const auto steep = MakePerceptron({2, 1}, true);
  steep->Layer(2).SetActivation(ActTanhGain);
  steep->Layer(2).Neuron(0).SetParameter(0, std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(Failure([&] { CFile::Save(path_, "n", *steep, {}); }),
            "Weights that are no numbers Bad Network CFile::Save");
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST(Identifiers, AreNamesInTheirLanguages) {
  const struct {
    std::string name, c, fcl;
  } cases[] = {{"", "n_", "n"},
               {"__", "n___", "n"},
               {"9 Lives!", "n_9_Lives_", "n_9_Lives"},
               {"Zebra..zoo", "Zebra__zoo", "Zebra_zoo"},
               {"@[`{/:", "n_______", "n"},
               {"sinl", "sinl_", "sinl"},
               {"fool", "fool", "fool"},
               {"M_PI", "M_PI_", "M_PI"},
               {"RULE", "RULE", "n_RULE"}};
  for (const auto& [name, c, fcl] : cases) {
    EXPECT_EQ(CIdentifier(name), c);
    EXPECT_EQ(FclIdentifier(name), fcl);
  }
  EXPECT_EQ(CommentText("a */ b\\\n?\x7f é"), "a __ b____ é");
}

TEST_F(TCFileTest, ASmallNetworkIsSmallInAProgram) {
  CFile::Save(path_, "iris", *MakePerceptron({4, 5, 3}, true), {});
  const std::string object = path_ + ".o";
  const std::string command = std::string(KILN_TEST_COMPILER) + " -x c -std=c99 -O2 -c -o '" +
                              object + "' '" + path_ + "' && test $(size '" + object +
                              "' | awk 'NR == 2 { print $4 }') -lt 2000";
  EXPECT_EQ(std::system(command.c_str()), 0);
  std::filesystem::remove(object);
}

}  // namespace
}  // namespace kiln
