#include "FileHandler/NetworkFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>

#include "FileTestTools.h"
#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/TConnectedConnections.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TException.h"
#include "Tarn/TTarn.h"

namespace kiln {
namespace {

using NetworkFiler::LoadNetwork;
using NetworkFiler::SaveNetwork;

const std::string kLayoutFile = KILN_TEST_DATA "/layout.net";
const std::string kMapFile = KILN_TEST_DATA "/map.net";
const std::string kTarnFile = KILN_TEST_DATA "/tarn.net";

const std::string kLoader = " Bad Format NetworkFiler::LoadNetwork";

class NetworkFileTest : public TFileTest {
 protected:
  std::string Saved(const TBasicNetwork& network) {
    SaveNetwork(path_, network);
    return Contents(path_);
  }

  void Load(const std::string& text) {
    Write(text);
    LoadNetwork(path_);
  }

  std::string LoadFailure(const std::string& text) {
    Write(text);
    return LoadFailure();
  }

  // Loads what the file holds and tells what went wrong.
  std::string LoadFailure() {
    return Failure([&] { LoadNetwork(path_); });
  }
};

TEST_F(NetworkFileTest, LaysOutEverySection) {
  for (const std::string& file : {kLayoutFile, kMapFile}) {
    EXPECT_EQ(Saved(*LoadNetwork(file)), Contents(file));
  }
}

TEST_F(NetworkFileTest, ReadsWhatPeopleWrite) {
  const auto network = LoadNetwork(KILN_TEST_DATA "/memory.net");
  EXPECT_EQ(network->KindName(), "Basic");
  const TBasicConnections& block = network->Connections(2, 1);
  EXPECT_FALSE(block.IsTrainable(1, 0));
  EXPECT_FALSE(block.Exists(2, 0));

  // Hidden: 4 (1 + out/2), 0.5 - 0.5 + 0.25, 4 * 0.025; output: their sum, weighted 1, 2, 10.
  const double input[] = {1.0, 0.25};
  double output[1];
  for (const double expected : {5.5, 16.5}) {
    network->RecallPattern(input, output);
    EXPECT_DOUBLE_EQ(output[0], expected);
  }
}

TEST(NetworkFile, HoldsTheTermsOfATarn) {
  const std::shared_ptr<TBasicNetwork> network = LoadNetwork(kTarnFile);
  const auto tarn = std::dynamic_pointer_cast<TTarn>(network);
  EXPECT_EQ(tarn->InputMF(), (TSizes{2, 3}));
  EXPECT_FALSE(tarn->Connections(2, 1).IsTrainable(0, 0));
  EXPECT_TRUE(tarn->Connections(2, 1).IsTrainable(3, 1));
  TValues output(1);
  tarn->RecallPattern(TValues{0.0, 0.4}, output);
  EXPECT_NEAR(tarn->GetActivationValue(2, 3), 0.6, 1e-15);
  const auto sigmoid = [](double net) { return 1 / (1 + std::exp(-net)); };
  const double rule = sigmoid(0.75 + 2 * 0.25 + 4 * 0.4 + 8 * 0.6);
  const double actions[] = {sigmoid(rule), sigmoid(0.5 * rule)};
  EXPECT_NEAR(output[0], (actions[0] * 0.25 + actions[1]) / (actions[0] + actions[1]), 1e-15);
}

TEST_F(NetworkFileTest, ActivatesNeuronsOfOneFunctionAsARow) {
  std::string text = With(Contents(kLayoutFile), "[All ActivationFunction=sigmoid-gain ]\n", "");
  for (const char* neuron : {"[Neuron=0", "[Neuron=1", "[Neuron=2"}) {
    text = With(text, neuron, std::string(neuron) + " ActivationFunction=sigmoid");
  }
  Write(text);
  EXPECT_NE(LoadNetwork(path_)->Layer(2).RowForm(), nullptr);
  Write(With(text, "=sigmoid Gain", "=linear Gain"));
  EXPECT_EQ(LoadNetwork(path_)->Layer(2).RowForm(), nullptr);
}

std::unique_ptr<TConnectedNetwork> MixedNetwork() {
  auto network = std::make_unique<TConnectedNetwork>(4);
  network->SetLayer(0, std::make_unique<TSimpleInputLayer>(10));
  network->Layer(0).SetActivation(ActLinear);
  network->SetLayer(2, std::make_unique<TGainLayer>(10));
  network->SetLayer(3, std::make_unique<TGainLayer>(1, -3.0));
  network->SetInputAndOutputLayer(0, 2);
  for (std::size_t i = 0; i < 10; ++i) {
    network->Layer(2).Neuron(i).SetActivation(i % 2 == 0 ? ActTanhGain : ActSigmoid);
    network->Layer(2).Neuron(i).SetParameter(0, static_cast<double>(i / 4) / 3.0);
  }
  network->Connect(0, 2);
  network->Connect(2, 2);
  network->SetConnections(3, 2, std::make_unique<TConnectedConnections>());
  network->Connect(3, 1);  // no neurons on one side, no weights
  network->Randomize(-1e-9, 1e3);
  TBasicConnections& block = network->Connections(2, 0);
  block.SetWeight(3, 0, std::numeric_limits<double>::infinity());
  block.SetWeight(4, 0, std::numeric_limits<double>::quiet_NaN());
  block.SetTrainable(5, 0, false);
  return network;
}

TEST_F(NetworkFileTest, SavesTheSameTextAgain) {
  const auto pruned = MakePerceptron({4, 5, 2}, true);
  pruned->PruneNode(2, 3);
  pruned->Connections(2, 1).SetTrainable(0, 0, false);
  const std::shared_ptr<TBasicNetwork> networks[] = {
      MakePerceptron({4, 5, 2}, false), pruned, MixedNetwork(),
      LoadNetwork(KILN_TEST_DATA "/memory.net"), LoadNetwork(kTarnFile)};
  for (const auto& network : networks) {
    const std::string text = Saved(*network);
    EXPECT_EQ(Saved(*LoadNetwork(path_)), text);
  }
}

TEST_F(NetworkFileTest, ListsTheWeightsOfSparseBlocks) {
  const auto network = MixedNetwork();
  TBasicConnections& block = network->Connections(2, 0);
  for (std::size_t i = 0; i < 65; ++i) block.SetExists(i % 10, i / 10, false);
  EXPECT_EQ(Saved(*network).find("WeightList"), std::string::npos);
  block.SetExists(9, 9, false);
  EXPECT_NE(Saved(*network).find("WeightList"), std::string::npos);
  EXPECT_EQ(LoadNetwork(path_)->Connections(2, 0).GetWeight(8, 9),
            network->Connections(2, 0).GetWeight(8, 9));
}

TEST_F(NetworkFileTest, RefusesToSaveTwoBiasNeurons) {
  TConnectedNetwork network(2);
  network.SetLayer(0, std::make_unique<TSimpleLayer>(2));
  network.Layer(0).SetActivation(ActBias);
  Write("old");
  EXPECT_EQ(Failure([&] { SaveNetwork(path_, network); }),
            "Illegal number of bias nodes Bad Format NetworkFiler::SaveNetwork");
  EXPECT_EQ(Contents(path_), "old");
}

TEST_F(NetworkFileTest, TellsThePlaceOfAFault) {
  Write("[NeuralNetwork]\n[NetworkType = MLP]\n[NetworkInformation]\n[Rows = 1]");
  try {
    LoadNetwork(path_);
    FAIL();
  } catch (const TException& failure) {
    ASSERT_NE(failure.Detail(), nullptr);
    EXPECT_EQ(failure.Detail()->DerefThrow("file").Name(), path_);
    EXPECT_EQ(failure.Detail()->DerefThrow("line").Name(), "4");
  }
  std::filesystem::remove(path_);
  EXPECT_EQ(LoadFailure(), "Error on file open" + kLoader);
}

// Each takes a good file and writes something else in the place of what it has.
TEST_F(NetworkFileTest, RefusesBrokenTexts) {
  const Fault kFaults[] = {
      {"[NetworkType = MLP]", "[NetworkType = TREE]", "Unknown network type"},
      {"[InputLayer = 1]", "[InputLayer = 1 /]", "Too complicated statement"},
      {"[InputLayer = 1]", "[InputLayer = 4]", "Assertion failed: inlayer < numlayers"},
      {"[InputLayer = 1]", "[InputLayer = -1]", "Assertion failed: inlayer >= 0"},
      {"[OutputLayer = 3]", "[OutputLayer = 4]", "Assertion failed: outlayer < numlayers"},
      {"[NumberOfLayers = 4]", "", "Must specify number of layers"},
      {"[NumberOfLayers = 4]", "[NumberOfLayers = 5]", "Assertion failed: layers[i] != NULL"},
      {"[NumberOfLayers = 4]", "[NumberOfLayers = -9223372036854775808]",
       "Assertion failed: inlayer < numlayers"},
      {"[NumberOfLayers = 4]", "[NumberOfLayers = 9999999999999999999]",
       "NumberOfLayers = 9223372036854775807 is out of range"},
      {"[NumberOfInputs = 2]", "[NumberOfInputs = 3]", "wrong number of inputs in header"},
      {"[NumberOfOutputs = 1]", "[NumberOfOutputs = 2]", "wrong number outputs in header"},
      {"[Layer = 3]", "[Layer = 4]", "Assertion failed: layernum < numlayers"},
      {"[Layer = 3]", "[Layer = -1]", "Assertion failed: layernum >= 0"},
      {"[Layer = 3]", "[Layer = 2]", "repeated layer"},
      {"[LayerType = GAIN]", "[LayerType = GRAIN]", "Unknown layer type"},
      {"[LayerType = GAIN]", "[All]", "[ALL] is incomplete statement"},
      {"[LayerType = GAIN]", "[All Gain]", "Required syntax is [ALL <keyword>=<val>"},
      {"[LayerType = GAIN]", "[All Gain=2 ]", "Unknown keyword"},
      {"[NumberOfNeurons = 3]", "[NumberOfNeurons = -1]", "NumberOfNeurons = -1 is out of range"},
      {"[NumberOfNeurons = 3]", "[NumberOfNeurons = 16777217]",
       "NumberOfNeurons = 16777217 is out of range"},
      {"[All ActivationFunction=sigmoid ]", "", "No activation function defined"},
      {"[All ActivationFunction=sigmoid ]", "[All ActivationFunction=step ]",
       "Unknown activation function step"},
      {"[All Gain=1.000000000000000 ]", "", "Incomplete Layer information"},
      {"[All Gain=1.000000000000000 ]", "[All Gain=one ]", "number-expected"},
      {"[Neuron=2", "[Neuron=1", "repeated neuron"},
      {"[Neuron=2", "[Neuron=3", "Assertion failed: neuronnum<numneurons"},
      {"[Neuron=2", "[Neuron=-1", "Assertion failed: neuronnum>=0"},
      {"[Neuron=2", "[Neutron=2", "[Neuron = <integer>] expected"},
      {"[Neuron=2 Gain=1.000000000000000 ]", "", "Neuron not defined"},
      {"[Neuron=2 Gain=1", "[Neuron=2 Gain Gain=1", "Equals clause expected in neuron parameter"},
      {"[LayerFrom = 1]", "[LayerFroom = 1]", "Unknown keyword in connections"},
      {"[LayerFrom = 1]", "[LayerFrom = 4]", "LayerFrom = 4 is out of range"},
      {"[LayerFrom = 1]", "[LayerFrom = 0]", "Connections already defined"},
      {"= FullyConnected]", "= Empty]", "Insufficient information to construct layer"},
      {"[Matrix Weights ]", "[Vector Weights ]", "[WeightList] expected"},
      {"[Matrix Weights ]", "[Matrix]", "Keyword expected in matrix parameter"},
      {"[Matrix Weights ]", "[Matrix Weights Age ]", "Unknown matric attribute"},
      {"[Matrix Weights ]",
       "[Matrix Weights Weights Weights Weights Weights Weights Weights Weights Weights Weights ]",
       "Assertion failed: wnum < 10"},
      {"-1.125", "", "Token Expected"},
      {"-1.125", "-", "FullyConnected connections cannot be pruned or frozen"},
      {"-1.125", "-1.125 0", "End Tag expected"},
      {"nan T", "nan 1", "T, F or - expected in trainable column"},
      {"[From=0 To=1", "[From=0 Too=1", "Unknown keyword in weights list"},
      {"[From=0 To=1", "[From=0", "Insufficient information in weights list"},
      {"[From=0 To=1", "[From=1 To=1", "From = 1 is out of range"},
      {"[~WeightList]\n[~ConnectionLayer]", "[~WeightList] ]", "Assertion failed: *token != ']'"},
      {"[~NeuralNetwork]", "[Layer = 0]", "End Tag expected"},
  };
  const std::string text = Contents(kLayoutFile);
  for (const Fault& fault : kFaults) {
    std::string broken = text;
    // From behind: later layers have the plainer texts.
    broken.replace(broken.rfind(fault.old_part), fault.old_part.size(), fault.part);
    const std::string failure = LoadFailure(broken);
    EXPECT_TRUE(failure.starts_with(fault.failure)) << fault.part << ": " << failure;
  }
}

TEST_F(NetworkFileTest, RefusesWhatIsNoMap) {
  const std::string kNoMap = "Layers and connections are not those of a KOHONEN";
  const std::string kAssertion = "Assertion failed: ";
  const std::initializer_list<Fault> kFaults = {
      {"NumberOfLayers = 3", "NumberOfLayers = 2", kAssertion + "numlayers == 3"},
      {"[Dimensions = 2]", "", "Missing dimensions in Kohonen"},
      {"[Dimensions = 2]", "[Dimensions = 2 Now = 1 ]", "Too complicated statement"},
      {"[Dimensions = 2]", "[Dimensions = 3]", "Dimension not defined"},
      {"[Dimensions = 2]", "[Dimensions = 1]", kAssertion + "i<dimensions"},
      {"[Dimensions = 2]", "[Dimensions = 0]", "Dimensions = 0 is out of range"},
      {"[Dimensions = 2]", "[Dimensions = 2000000000]", "Dimensions = 2000000000 is out of range"},
      {"[Dimension=1 ", "[Dimensionless=1 ", "invalid dimension tag"},
      {"[Dimension=1 ", "[Dimension=-1 ", kAssertion + "i>=0"},
      {"[Dimension=1 ", "[Dimension=0 ", "repeated dimension"},
      {"[Dimension=1 ", "[Dimension=1] [", "'Size' tag required for dimension data"},
      {" Size=2 ]", " Size=2 Size=2 ]", "'Size' tag required for dimension data"},
      {" Size=2 ]", " Size=0 ]", "Size = 0 is out of range"},
      {" Size=2 ]", " Size=16777216 ]", "a map of more than 16777216 units"},
      {" Size=2 ]", " Size=3 ]", kNoMap},
      {"[InputLayer = 1]\n[OutputLayer = 2]", "[InputLayer = 2]\n[OutputLayer = 2]",
       "wrong number of inputs in header"},
      {"[OutputLayer = 2]\n[NumberOfInputs = 2]\n[NumberOfOutputs = 6]", "[OutputLayer = 1]",
       kNoMap},
      {"[LayerFrom = 1]", "[LayerFrom = 0]", "End Tag expected"},
      {"FullyConnected", "Pruneable", kNoMap},
  };
  ExpectFailures(Contents(kMapFile), kFaults, [&](const std::string& text) { Load(text); });
}

TEST_F(NetworkFileTest, RefusesWhatIsNoTarn) {
  const std::string place = " (" + path_ + ", line 13)";
  const std::string misfit = "Layers and connections are not those of a TARN" + kLoader;
  const std::initializer_list<Fault> kFaults = {
      {"Layers = 6", "Layers = 5", "Assertion failed: numlayers == 6, file FileHandler/Network"},
      {"[InputMF]", "[MF]", "membership array missing in condition layer" + kLoader},
      {"[OutputMF]", "[InputMF]", "membership array missing in output layer" + kLoader},
      {"[Input=1 ", "[Index=1 ", "invalid tag in membership1" + place},
      {"[Input=1 MF=3 ]", "[Input=1 ]", "invalid tag in membership2" + place},
      {"[Input=1 MF=3 ]", "[Input=1 Mf ]", "invalid tag in membership2" + place},
      {"[Input=1 ", "[Input=5 ", "Assertion failed: i<numnodes, file FileHandler/SaveTarn"},
      {"[Input=1 ", "[Input=-1 ", "Assertion failed: i>=0, file FileHandler/SaveTarn"},
      {"[Input=0 ", "[Input=1 ", "repeated Input (" + path_ + ", line 14)"},
      {"[Input=0 ", "[Input=2 ", "Assertion failed: NdxMF >= 2, file Tarn/TConditionLayer"},
      {"MF=3 ]", "MF=-3 ]", "MF = -3 is out of range" + place},
      {"MF=3 ]", "MF=99999999999 ]", "MF = 99999999999 is out of range" + place},
      {"MF=3 ]", "MF=6 ]", "the inputs have 8 membership functions but"},
      {"MF=2 ] [~Out", "MF=1 ] [~Out", "ToOutputConnections do not fit these layers" + kLoader},
      {"[Output=0 MF=2 ]", "", "there are membership functions of 0 outputs but"},
      {"= ToOutput", "= ToCondition", "ToConditionConnections do not fit these layers" + kLoader},
      {"= ToOutputConnections", "= FullyConnected", misfit},
      {"[From=0 To=1 W", "[From=1 To=1 W", "ToConditionConnections do not join neuron 1 with"},
      {"[From=0 To=1 Weight=3 ]", "", misfit},  // no centre
      {"tarn-condition", "sigmoid", misfit},
      {"= sigmoid", "= linear", misfit},
      {"= Sigmoid", "= tanh", misfit},
      {"= 6]", "= 6] [InputLayer = 0]", misfit},
      {"= 6]", "= 6] [OutputLayer = 4]", misfit},
      {"= simple] [NumberOfNeurons = 0]", "= gain] [NumberOfNeurons = 0]", misfit},
      {"= 0] [~Layer]", "= 1] [ActivationFunction = bias] [~Layer]", misfit},
  };
  ExpectFailures(Contents(kTarnFile), kFaults, [&](const std::string& text) { Load(text); });
}

TEST_F(NetworkFileTest, RefusesTruncatedFiles) {
  for (const std::string& file : {kLayoutFile, kMapFile, kTarnFile}) {
    const std::string text = Contents(file);
    const std::size_t complete = text.rfind(']');  // the bracket itself is not missed
    EXPECT_EQ(LoadFailure(text.substr(0, complete)), "none");
    for (std::size_t size = complete; size-- > 0;) {
      std::filesystem::resize_file(path_, size);
      EXPECT_NE(LoadFailure(), "none") << size;
    }
  }
}

TEST_F(NetworkFileTest, TakesNoMemoryForEmptyPromises) {
  const std::string header =
      "[NeuralNetwork][NetworkType=BASIC][NetworkInformation][NumberOfLayers=2][~"
      "NetworkInformation]";
  const std::string layer =
      "][LayerType=SIMPLE][NumberOfNeurons=100000]"
      "[All ActivationFunction=tanh ][~Layer]";
  const std::string network = header + "[Layer=0" + layer + "[Layer=1" + layer +
                              "[ConnectionLayer][LayerFrom=0][LayerTo=1]"
                              "[ConnectionType=Pruneable]";
  const std::string place = kLoader + " (" + path_ + ", line 1)";
  EXPECT_EQ(LoadFailure(network + "[Matrix Weights ]"),
            "matrix of 10000000000 weights is more than the file holds" + place);
  EXPECT_EQ(LoadFailure(network + "[WeightList]"),
            "a block of 10000000000 weights, which the file does not show" + place);
  const std::string largest = "][LayerType=SIMPLE][NumberOfNeurons=16777216]";
  EXPECT_EQ(LoadFailure(header + "[Layer=0" + largest),
            "NumberOfNeurons = 16777216 is out of range" + place);
}

}  // namespace
}  // namespace kiln
