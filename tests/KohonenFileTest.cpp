#include <gtest/gtest.h>

#include "FileHandler/NetworkFile.h"
#include "FileTestTools.h"
#include "NeuralNets/TKohonenNetwork.h"

namespace kiln {
namespace {

const std::string kMapFile = KILN_TEST_DATA "/map.net";

using KohonenFileTest = TFileTest;

TEST(KohonenFile, HoldsPrototypes) {
  const auto map = NetworkFiler::LoadNetwork(kMapFile);
  const double pattern[] = {0.9, 2.2};
  double prototype[2];
  EXPECT_EQ(dynamic_cast<TKohonenNetwork&>(*map).FindWinner(pattern, prototype), 5U);
  EXPECT_EQ(prototype[1], 2.25);
}

TEST_F(KohonenFileTest, RefusesWhatIsNoMap) {
  const std::string kNoMap = "Layers and connections are not those of a KOHONEN";
  const std::string kAssertion = "Assertion failed: ";
  const auto load = [&](const std::string& text) {
    Write(text);
    NetworkFiler::LoadNetwork(path_);
  };
  const std::initializer_list<Fault> kFaults = {
      {"NumberOfLayers = 3", "NumberOfLayers = 2", kAssertion + "numlayers == 3"},
      {"[Dimensions = 2]", "", "Missing dimensions in Kohonen"},
      {"[Dimensions = 2]", "[Dimensions = 2 Now = 1 ]", "Too complicated statement"},
      {"[Dimensions = 2]", "[Dimensions = 3]", "Dimension not defined"},
      {"[Dimensions = 2]", "[Dimensions = 1]", kAssertion + "i<dimensions"},
      {"[Dimensions = 2]", "[Dimensions = 0]", "Dimensions = 0 is out of range"},
      {"[Dimensions = 2]", "[Dimensions = -1]", "Dimensions = -1 is out of range"},
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
  ExpectFailures(Contents(kMapFile), kFaults, load);
}

}  // namespace
}  // namespace kiln
