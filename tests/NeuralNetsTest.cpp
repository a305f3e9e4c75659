#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <numeric>

#include "Networks.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"

namespace kiln {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Whether an action ends with the assertion of an expression.
template <typename TAction>
bool Refuses(const std::string& expression, const TAction& action) {
  return Failure(action).starts_with("Assertion failed: " + expression + ", file NeuralNets/");
}

TValues RecallOf(TBasicNetwork& network, const TValues& input) {
  TValues output(network.NumOutputs());
  network.RecallPattern(input, output);
  return output;
}

// --- Activation functions --------------------------------------------------------------------

TEST(ActFunctionsTest, NeuronsAndWholeLayersComputeTheFunctionOfTheName) {
  const struct {
    const char* name;
    double gain, x, y;
  } cases[] = {{"BIAS", 2, -7, 1},
               {"linear", 2, -1.5, -1.5},
               {"saturated-linear", 2, -3, 0},
               {"Saturated-Linear", 2, 7, 1},
               {"saturated-linear", 2, 0.25, 0.25},
               {"saturated-linear", 2, kNaN, 0},
               {"Sigmoid", 2, 1, 0.7310585786300049},
               {"sigmoid", 2, -500, 7.124576406741286e-218},
               {"sigmoid", 2, -500.5, 1e-300},
               {"linear-gain", 2, -1.5, -3},
               {"sigmoid-gain", 2, 0.5, 0.7310585786300049},
               {"sigmoid-gain", 2, -300, 2.6503965530043108e-261},
               {"tanh-gain", 0.5, 1, 0.46211715726000973}};
  for (const auto& c : cases) {
    const TActFunction function = TFnRegistry::Instance().Lookup(c.name);
    EXPECT_EQ(function, TFnRegistry::Instance().Lookup(TFnRegistry::Instance().Lookup(function)));
    TGainLayer whole(3);
    TGainLayer mixed(3, c.gain);
    whole.SetGain(c.gain);
    whole.SetActivation(function);
    for (std::size_t i = 0; i < 3; ++i) {
      mixed.Neuron(i).SetActivation(i == 1 ? function : ActBias);
      whole.NetInputs()[i] = mixed.NetInputs()[i] = c.x;
    }
    whole.Activate();
    mixed.Activate();
    EXPECT_NEAR(c.y, whole.Outputs()[2], 1e-14 * std::abs(c.y)) << c.name << c.x;
    EXPECT_NEAR(c.y, mixed.Outputs()[1], 1e-14 * std::abs(c.y)) << c.name << c.x;
    EXPECT_EQ(mixed.Outputs()[2], 1.0);
  }
}

TEST(ActFunctionsTest, KnowsItsOwnFunctionsAlone) {
  const TFnRegistry& registry = TFnRegistry::Instance();
  const TActFunction stranger = [](TBasicNeuron&, double) {};
  EXPECT_EQ(registry.RowForm(stranger), nullptr);
  EXPECT_TRUE(Failure([&] { registry.Lookup(stranger); }).ends_with("line 239"));
}

// --- Error measures --------------------------------------------------------------------------

TEST(TErrorObjTest, CrossEntropyByHand) {
  TErrorCrossEntropyObj entropy(2);
  entropy.Accumulate(TValues{1, 0}, TValues{1, 1});
  EXPECT_EQ(entropy.Value(), 1000000.0);
  entropy.Reset();
  entropy.Accumulate(TValues{0.25, 1}, TValues{0.5, 0.125});
  EXPECT_DOUBLE_EQ(std::log(2.0) + std::log(8.0), entropy.Value());
  entropy.Accumulate(TValues{0.5, 0.5}, TValues{0, 0.5});
  EXPECT_EQ(kInfinity, entropy.Value());
  entropy.Reset();
  entropy.Accumulate(TValues{0, 1}, TValues{0, 1});
  EXPECT_EQ(entropy.Value(), 0.0) << "nothing could be nearer";
}

// --- Structure -------------------------------------------------------------------------------

// Bias, two inputs, three hidden neurons, one output, a connection from the output back to the
// hidden layer, and the weights 0, 1, 2, ... in the one order.
TMLPNetwork MakeNumbered() {
  TMLPNetwork network(TSizes{2, 3, 1}, true);
  network.Connect(3, 2);
  TValues weights(network.GetNumWeights(FMaskAll));
  std::iota(weights.begin(), weights.end(), 0.0);
  network.SetWeights(weights, FMaskAll);
  return network;
}

TEST(TBasicNetworkTest, WalksWeightsFromLayerByFromLayerAndRowByRow) {
  TMLPNetwork network = MakeNumbered();
  ASSERT_EQ(network.GetNumWeights(FMaskExists), 16u);
  const struct {
    std::size_t to_layer, from_layer, to, from;
    double weight;
  } cases[] = {{2, 0, 2, 0, 2}, {3, 0, 0, 0, 3},  {2, 1, 0, 1, 5}, {2, 1, 1, 0, 6},
               {2, 1, 2, 1, 9}, {3, 2, 0, 2, 12}, {2, 3, 0, 0, 13}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.weight, network.Connections(c.to_layer, c.from_layer).GetWeight(c.to, c.from));
  }
  EXPECT_TRUE(Refuses("weights.size()==GetNumWeights(val)",
                      [&] { network.SetWeights(TValues(15), FMaskAll); }));
  EXPECT_TRUE(Refuses("(val==FMaskAll) || (val==FMaskExists)",
                      [&] { network.GetNumWeights(FMaskTrainable); }));
}

TEST(TBasicNetworkTest, PrunedAndFrozenConnections) {
  TMLPNetwork network = MakeNumbered();
  network.PruneNode(2, 1);
  TBasicConnections& block = network.Connections(2, 1);
  block.SetTrainable(0, 0, false);
  EXPECT_FALSE(block.Exists(1, 0) || network.Connections(3, 2).Exists(0, 1) ||
               block.IsTrainable(0, 0));
  EXPECT_TRUE(block.IsTrainable(0, 1) && block.Exists(0, 0));
  block.SetWeight(1, 0, 77);
  EXPECT_EQ(block.GetWeight(1, 0), 0.0);
  TIterateObjCount count;
  network.Read(count);
  EXPECT_EQ(count.Existing(), 11u);
  EXPECT_EQ(count.Trainable(), 10u);

  // An absent connection stands in the vector of all weights, not in that of the existing ones.
  EXPECT_EQ(network.GetNumWeights(FMaskAll), 16u);
  TValues existing = network.GetWeights(FMaskExists);
  EXPECT_EQ(existing, (TValues{0, 2, 3, 4, 5, 8, 9, 10, 12, 13, 15}));
  for (double& weight : existing) weight += 1;
  network.SetWeights(existing, FMaskExists);
  EXPECT_EQ(existing, network.GetWeights(FMaskExists));
  network.SetWeights(TValues(16, 7.0), FMaskAll);
  EXPECT_EQ(TValues(11, 7.0), network.GetWeights(FMaskExists));

  std::vector<TMask> flags;
  TIterateObjGetFlags get(flags, FMaskAll);
  network.Read(get);
  TMLPNetwork other = MakeNumbered();
  TIterateObjSetFlags set(flags, FMaskAll);
  other.Iterate(set);
  EXPECT_TRUE(!other.Connections(2, 1).IsTrainable(0, 0) && !other.Connections(2, 3).Exists(1, 0));
  TIterateObjAllUntrainable freeze;
  TIterateObjCount recount;
  TIterateObjAggregate both({&freeze, &recount});
  other.Iterate(both);
  EXPECT_EQ(recount.Trainable(), 0u);
}

TEST(TBasicNetworkTest, AbsentConnectionsContributeNothingWhateverMeetsThere) {
  TMLPNetwork network(TSizes{2, 1}, false);
  network.Layer(2).SetActivation(ActLinear);
  network.SetWeights(TValues{3, 4}, FMaskAll);
  network.Connections(2, 1).SetExists(0, 0, false);
  EXPECT_EQ(RecallOf(network, {kNaN, 2}), TValues{8});
  EXPECT_FALSE(network.RecallsInBlocks());
  Data patterns(1, 2, 0, false);
  patterns.AddRow(TValues{kInfinity, 3}, {});
  EXPECT_EQ(network.Recall(&patterns)->GetOutputDatum(0, 0), 12.0);
}

TEST(TBasicNetworkTest, NeuronsComeAndGoWithTheirConnections) {
  TMLPNetwork network = MakeNumbered();
  network.Connections(2, 1).SetTrainable(1, 0, false);
  const TValues weights = network.GetWeights(FMaskAll);
  const TValues before = RecallOf(network, {0.5, -0.25});
  network.AddNeuron(2, 1);
  EXPECT_EQ(network.GetWeights(FMaskAll),
            (TValues{0, 0, 1, 2, 3, 4, 5, 0, 0, 6, 7, 8, 9, 10, 0, 11, 12, 13, 0, 14, 15}));
  EXPECT_EQ(ActSigmoid, network.Layer(2).Neuron(1).GetActivation());
  EXPECT_TRUE(network.Connections(2, 1).IsTrainable(1, 0) &&
              !network.Connections(2, 1).IsTrainable(2, 0));
  network.Layer(3).Outputs()[0] = 0.0;
  EXPECT_EQ(before, RecallOf(network, {0.5, -0.25}));
  network.RemoveNeuron(2, 1);
  EXPECT_EQ(weights, network.GetWeights(FMaskAll));
}

TEST(TBasicNetworkTest, CopiesStandOnTheirOwn) {
  TMLPNetwork network = MakeNumbered();
  network.Connections(2, 1).SetExists(0, 0, false);
  network.Layer(2).Neuron(1).SetParameter(0, 2.0);
  RecallOf(network, {1, 2});
  const auto copy = network.Clone();
  const TValues expected = RecallOf(network, {-1, 0.5});
  network.Randomize(0.0, 0.0);
  network.Layer(2).SetActivation(ActLinear);
  EXPECT_EQ(RecallOf(*copy, {-1, 0.5}), expected);
  EXPECT_EQ(copy->Layer(2).Neuron(1).Gain(), 2.0);
  network.Assign(*copy);
  EXPECT_EQ(RecallOf(*copy, {3, 4}), RecallOf(network, {3, 4}));
  EXPECT_TRUE(Refuses("n_layers == x.n_layers", [&] { network.Assign(TConnectedNetwork(3)); }));
}

TEST(TBasicNetworkTest, SizesAreCheckedBeforeMemoryIsTaken) {
  for (const TSizes& sizes :
       {TSizes{}, TSizes{0}, TSizes{2, -1}, TSizes{1 << 25, 1}, TSizes{1 << 20, 1 << 11},
        TSizes(600, 1), TSizes{1 << 23, 1, 1 << 23}, TSizes(500, INT_MAX)}) {
    EXPECT_NE(std::string::npos, Failure([&] { TMLPNetwork(sizes, true); }).find("Bad Parameter"));
  }
  EXPECT_TRUE(Failure([] { TConnectedNetwork(0); }).starts_with("a network of 0 layers"));
}

// --- Recall ----------------------------------------------------------------------------------

TEST(TBasicNetworkTest, ConnectionsFromLaterLayersRememberOneStep) {
  TConnectedNetwork network(3);
  network.SetLayer(1, std::make_unique<TSimpleInputLayer>(1));
  network.SetLayer(2, std::make_unique<TSimpleLayer>(1));
  network.Layer(2).SetActivation(ActLinear);
  network.Connect(1, 2);
  network.Connect(2, 2);
  network.SetWeights(TValues{1, 0.5}, FMaskAll);
  EXPECT_EQ(RecallOf(network, {4}), TValues{4});
  EXPECT_EQ(RecallOf(network, {0}), TValues{2});
  Data patterns(1, 1, 0, false);
  patterns.AddRow(TValues{1}, {});
  EXPECT_EQ(network.Recall(&patterns)->GetOutputDatum(0, 0), 2.0);
}

TEST(TBasicNetworkTest, UnusualLayersStillCompute) {
  TConnectedNetwork network(3);
  network.SetLayer(1, std::make_unique<TSimpleLayer>(2));
  network.SetLayer(2, std::make_unique<TSimpleInputLayer>(1));
  network.Layer(1).SetActivation(ActLinear);
  network.Layer(2).Outputs()[0] = 9.0;
  testing::internal::CaptureStdout();
  EXPECT_EQ(RecallOf(network, {5, 6}), TValues{0});
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "!Warning: changed input layer (TSimpleLayer)\n"
            "!Warning: changed input layer (TSimpleInputLayer)\n");
  EXPECT_EQ(network.Layer(1).Outputs()[1], 6.0);
}

TEST(TBasicNetworkTest, RecallsWholeSetsOldestRowFirst) {
  const auto network = MakePerceptron({3, 5, 4, 2}, true);
  network->Layer(2).SetActivation(ActTanhGain);
  const auto data = MakePatterns(70, 3, 2, 0.0, 1.0);
  const auto rows = network->Recall(data.get());
  const auto outputs = network->RecallOutputOnly(data.get());
  EXPECT_TRUE(network->RecallsInBlocks());
  const double last = network->Layer(2).Outputs()[4];
  double sum = 0.0;
  for (int n = 0; n < 70; ++n) {
    const DataRow row = data->Row(n);
    const TValues expected = RecallOf(*network, TValues(row.Inputs.begin(), row.Inputs.end()));
    for (std::size_t i = 0; i < 2; ++i) {
      EXPECT_NEAR(expected[i], rows->Row(n).Outputs[i], 1e-14);
      EXPECT_NEAR(expected[i], outputs->Row(n).Outputs[i], 1e-14);
      sum += std::pow(expected[i] - row.Outputs[i], 2);
    }
    EXPECT_EQ(row.Inputs[2], rows->Row(n).Inputs[2]);
  }
  EXPECT_NEAR(network->Layer(2).Outputs()[4], last, 1e-14);
  TErrorRMSObj error(2);
  EXPECT_NEAR(std::sqrt(sum / 140), network->RecallError(data.get(), &error), 1e-12);

  EXPECT_EQ(Failure([&] { network->RecallOutputOnly(nullptr); }),
            "Null data pointer Null Pointer Parameter TTarn::RecallOutputOnly");
  const auto narrow = MakePatterns(2, 2, 2, 0.0, 1.0);
  const auto expect_refusal = [](const auto& recall) {
    EXPECT_EQ(Failure(recall).find("the data set has 2 inputs but the network has 3"), 0u);
  };
  expect_refusal([&] { network->Recall(narrow.get()); });
  expect_refusal([&] { network->RecallOutputOnly(narrow.get()); });
  expect_refusal([&] { network->RecallError(narrow.get(), &error); });
}

}  // namespace
}  // namespace kiln
