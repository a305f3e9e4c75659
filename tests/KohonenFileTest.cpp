#include <gtest/gtest.h>

#include <filesystem>

#include "FileHandler/NetworkFile.h"
#include "FileTestTools.h"
#include "NeuralNets/TKohonenNetwork.h"

namespace kiln {
namespace {

const std::string kMapFile = KILN_TEST_DATA "/map.net";

class KohonenFileTest : public testing::Test {
 protected:
  ~KohonenFileTest() override { std::filesystem::remove(path_); }

  std::shared_ptr<TKohonenNetwork> Load(const std::string& text) {
    std::ofstream(path_, std::ios::binary) << text;
    const std::shared_ptr<TBasicNetwork> network = NetworkFiler::LoadNetwork(path_);
    return std::dynamic_pointer_cast<TKohonenNetwork>(network);
  }

  const std::string path_ = testing::TempDir() + "kohonen-" +
                            testing::UnitTest::GetInstance()->current_test_info()->name() + ".net";
};

TEST_F(KohonenFileTest, AMapReadsAndWritesTheSameText) {
  const auto map = Load(Contents(kMapFile));
  ASSERT_NE(map, nullptr);
  const double pattern[] = {0.9, 2.2};
  double prototype[2];
  EXPECT_EQ(map->FindWinner(pattern, prototype), 5U);
  EXPECT_EQ(prototype[1], 2.25);
  NetworkFiler::SaveNetwork(path_, *map);
  EXPECT_EQ(Contents(path_), Contents(kMapFile));
}

TEST_F(KohonenFileTest, RefusesWhatIsNoMap) {
  const std::string kNoMap = "Layers and connections are not those of a KOHONEN";
  const std::string kAssertion = "Assertion failed: ";
  const struct {
    const char* old_part;
    const char* part;
    std::string failure;
  } kFaults[] = {
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
  for (const auto& fault : kFaults) {
    const std::string text = With(Contents(kMapFile), fault.old_part, fault.part);
    const std::string failure = Failure([&] { Load(text); });
    EXPECT_TRUE(failure.starts_with(fault.failure)) << fault.part << ": " << failure;
  }
}

}  // namespace
}  // namespace kiln
