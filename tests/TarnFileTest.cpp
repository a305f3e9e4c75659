#include <memory>

#include "FileHandler/NetworkFile.h"
#include "FileTestTools.h"
#include "Networks.h"
#include "Tarn/TTarn.h"

namespace kiln {
namespace {

using TarnFileTest = TFileTest;

const std::string kTarnFile = KILN_TEST_DATA "/tarn.net";

TEST(TarnFile, ReadsWhatPeopleWrite) {
  const std::shared_ptr<TBasicNetwork> network = NetworkFiler::LoadNetwork(kTarnFile);
  const auto tarn = std::dynamic_pointer_cast<TTarn>(network);
  EXPECT_EQ((TSizes{2, 3}), tarn->InputMF());
  EXPECT_FALSE(tarn->Connections(2, 1).IsTrainable(0, 0));
  EXPECT_TRUE(tarn->Connections(2, 1).IsTrainable(3, 1));
  TValues output(1);
  tarn->RecallPattern(TValues{0.0, 0.4}, output);
  EXPECT_NEAR(0.6, tarn->GetActivationValue(2, 3), 1e-15);
  EXPECT_NEAR(0.75 + 2 * 0.25 + 4 * 0.4 + 8 * 0.6, tarn->GetActivationValue(3, 0), 1e-12);
  EXPECT_NEAR((1 * 0.25 + 0.5 * 1) / 1.5, output[0], 1e-15);
}

TEST_F(TarnFileTest, RefusesBrokenTexts) {
  const std::string place = " (" + path_ + ", line 13)";
  const std::string loader = " Bad Format NetworkFiler::LoadNetwork";
  const std::string misfit = "Layers and connections are not those of a TARN" + loader;
  const auto load = [&](const std::string& text) {
    Write(text);
    NetworkFiler::LoadNetwork(path_);
  };
  const std::initializer_list<Fault> kFaults = {
      {"Layers = 6", "Layers = 5", "Assertion failed: numlayers == 6, file FileHandler/Network"},
      {"[InputMF]", "[MF]", "membership array missing in condition layer" + loader},
      {"[OutputMF]", "[InputMF]", "membership array missing in output layer" + loader},
      {"[Input=1 ", "[Index=1 ", "invalid tag in membership1" + place},
      {"[Input=1 MF=3 ]", "[Input=1 ]", "invalid tag in membership2" + place},
      {"[Input=1 MF=3 ]", "[Input=1 Mf ]", "invalid tag in membership2" + place},
      {"[Input=1 ", "[Input=5 ", "Assertion failed: i<numnodes, file FileHandler/SaveTarn"},
      {"[Input=1 ", "[Input=-1 ", "Assertion failed: i>=0, file FileHandler/SaveTarn"},
      {"[Input=0 ", "[Input=1 ", "repeated Input (" + path_ + ", line 14)"},
      {"[Input=0 ", "[Input=2 ", "Assertion failed: NdxMF >= 2, file Tarn/TConditionLayer"},
      {"MF=3 ]", "MF=-3 ]", "MF = -3 is out of range" + place},
      {"MF=3 ]", "MF=99999999999 ]", "the inputs have 2147483649 membership functions but"},
      {"MF=2 ] [~Out", "MF=1 ] [~Out", "ToOutputConnections do not fit these layers" + loader},
      {"[Output=0 MF=2 ]", "", "there are membership functions of 0 outputs but"},
      {"= ToOutput", "= ToCondition", "ToConditionConnections do not fit these layers" + loader},
      {"= ToOutputConnections", "= FullyConnected", misfit},
      {"[From=0 To=1 W", "[From=1 To=1 W", "ToConditionConnections do not join neuron 1 with"},
      {"[From=0 To=1 Weight=3 ]", "", misfit},  // no centre
      {"tarn-condition", "sigmoid", misfit},
      {"= 6]", "= 6] [InputLayer = 0]", misfit},
  };
  ExpectFailures(Contents(kTarnFile), kFaults, load);
}

}  // namespace
}  // namespace kiln
