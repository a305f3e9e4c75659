#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <sstream>

#include "FileTestTools.h"
#include "Networks.h"
#include "RuleObject/TRuleFile.h"
#include "Tarn/RuleExtraction/NetworkLabels.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TConditionLayer.h"

namespace kiln {
namespace {

const TSizes kInputMF = {3, 2};
const TSizes kOutputMF = {2, 2};

TFuzzyRuleSet Extracted(const TTarn& network, const std::string& options = "") {
  return TNetRule::RETarn(network, TKQstructure::Parse("(Params " + options + ")"), nullptr);
}

std::string Written(const TFuzzyRuleSet& rules) {
  return WrittenBy([&](FileTools::Writer& out) { TRuleFile::SaveRules(out, rules); });
}

TFuzzyRuleSet Read(const std::string& text) {
  FileTools::Reader reader(text, "f");
  return TRuleFile::LoadRules(reader);
}

// A rule file with the terms of a network and these rules.
std::string FileWith(const TTarn& network, const std::string& rules) {
  return With(Written(Extracted(network, ":threshold 99")), "[~RuleList]", rules + "[~RuleList]");
}

std::vector<TValues> Weights(const TTarn& network) {
  return {network.GetWeightLayer(1), network.GetWeightLayer(2), network.GetWeightLayer(3),
          network.GetWeightLayer(4)};
}

// Antecedents of two atoms, none, two, one; of equal weights the first counts. No action of the
// third rule node is positive, and the last node lacks its connection with action 2.
TTarn MakeRuleNodes() {
  TTarn network(kInputMF, 4, kOutputMF);
  network.SetWeightLayer(
      2, TValues{.5, 2, 2, -1, .3, -1, 0, -2, 0, -3, 1, -1, 0, .5, .4, 0, 0, .25, 0, 0});
  network.SetWeightLayer(3, TValues{1, 5, -1, .25, 3, 5, 0, -.5, .5, 5, 0, 7, .5, 5, -2, 2});
  network.Connections(4, 3).SetExists(2, 3, false);
  return network;
}

// "0.1*2 > 1.0*0.5; " for a rule with the term 1 of input 0 and the term 0 of output 1.
std::string Short(const TRuleList& rules) {
  std::ostringstream text;
  const auto add = [&](const TRuleAtom& atom) {
    text << atom.variable << '.' << atom.mf << '*' << atom.degree << ' ';
  };
  for (const TRule& rule : rules) {
    const auto& antecedent = *std::get<std::unique_ptr<TRuleExpression>>(rule.antecedent);
    for (const TRuleElement& element : antecedent) add(std::get<TRuleAtom>(element));
    text << "> ";
    for (const TRuleAtom& atom : rule.consequences) add(atom);
  }
  return text.str();
}

TEST(NetRule, ReadsRuleNodes) {
  const TTarn network = MakeRuleNodes();
  const std::string first = "0.1*2 1.1*0.3 > ";
  const std::string first_of_all = first + "0.0*1 0.1*3 1.0*0.5 1.1*0.5 ";
  const std::string all = first_of_all + "0.2*0.25 > 0.0*0.25 1.1*2 ";
  const std::pair<const char*, std::string> kCases[] = {
      {"", all},
      {":threshold 0.25", first_of_all},
      {":THRESHOLD 0.3 :thresholdout 0.5", "0.1*2 > 0.0*1 0.1*3 "},
      {":threshold 1 :thresholdin 0", first + "0.1*3 0.2*0.25 > 1.1*2 "},
      {":thresholdout -0.6",
       first_of_all + "0.0*1 1.0*0.5 > 0.1*0 1.0*0 0.2*0.25 > 0.0*0.25 0.1*-0.5 1.1*2 "},
      {":method nodelocation",
       "0.1*0.5 1.1*0.65 > 0.1*1 0.0*1 1.0*0.05 > 0.1*0.5 1.0*1 0.2*0.166667 > 0.0*0.375 "},
      {":method NodeLocation :thresholdin .1 :thresholdout 0.5",
       "0.1*0.5 1.1*0.65 > 0.1*1 0.0*1 > 1.0*1 "},
  };
  for (const auto& [options, rules] : kCases) {
    EXPECT_EQ(Short(Extracted(network, options).Rules()), rules) << options;
  }
  TTarn three({{2}}, 1, {{3}});
  three.SetWeightLayer(2, TValues{1, 0});
  three.SetWeightLayer(3, TValues{3, 2.5, 0.5});
  EXPECT_EQ(Short(Extracted(three, ":method NODELOCATION").Rules()), "0.0*0.5 > 0.0*1 ");
  EXPECT_EQ(Short(Extracted(three, ":method vireo2 :thresholdout 0.9").Rules()),
            "0.0*0.5 > 0.0*1 0.1*0.5 ");
  EXPECT_EQ(Failure([&] { TNetRule::RETarn(*MakePerceptron({2}, true), TKQstructure(), nullptr); }),
            "RETarn only works on Tarn Invalid Network Type TNetRule::RETarn");
}

TEST(NetRule, TellsWhichThresholdKeepsRulesOut) {
  const TTarn network = MakeRuleNodes();
  const auto obstacle = [&](const std::string& options) {
    const auto found =
        TNetRule::ObstacleToRules(network, TKQstructure::Parse("(Params " + options + ")"));
    return found ? std::string(found->threshold) + ' ' + std::to_string(found->bound) : "none";
  };
  EXPECT_EQ(obstacle(""), "none");
  EXPECT_EQ(obstacle(":threshold 99"), "ThresholdIn 2.000000");
  EXPECT_EQ(obstacle(":thresholdin 1.5 :thresholdout 99"), "ThresholdOut 3.000000");
  EXPECT_EQ(obstacle(":method vireo2 :thresholdin 1 :thresholdout 9"), "none");
  EXPECT_EQ(obstacle(":method NodeLocation :thresholdin 0.55 :thresholdout 2"),
            "ThresholdOut 1.000000");
  EXPECT_EQ(obstacle(":method Vireo2 :thresholdin 9"), "ThresholdIn 1.500000");
  EXPECT_EQ(TNetRule::ObstacleToRules(TTarn(kInputMF, 1, kOutputMF), TKQstructure()).has_value(),
            false);
}

// The functions say of every value what the condition layer says, and ranges hold all centres.
TEST(NetRule, DescribesMemberships) {
  TTarn network(kInputMF, 1, kOutputMF);
  network.SetWeightLayer(1, TValues{-0.5, 0.2, 0.7, 0.25, 1.5});
  const auto [inputs, outputs] = TNetRule::GetNetMF(network, MakeDefaultLabels(network));
  const auto& conditions = dynamic_cast<const TConditionLayer&>(network.Layer(2));
  for (double x = -1.0; x < 2.0; x += 0.03125) {
    std::array<double, 5> memberships;
    inputs.GetMFSet(0)->GetMemberships(x, std::span(memberships).first(3));
    inputs.GetMFSet(1)->GetMemberships(x, std::span(memberships).subspan(3));
    for (std::size_t k = 0; k < 5; ++k) EXPECT_EQ(memberships[k], conditions.Membership(k, x));
  }
  EXPECT_EQ(inputs.GetMFSet(0)->LowerBound(), -0.5);
  EXPECT_EQ(inputs.GetMFSet(1)->LowerBound(), 0);
  EXPECT_EQ(inputs.GetMFSet(1)->UpperBound(), 1.5);
  EXPECT_EQ(*outputs.GetMFSet(1)->Name() + *outputs.GetMFSet(1)->GetMF(1)->Name(), "OutputBB");

  const auto failure = [&](const TSizes& input_mf, const TSizes& output_mf) {
    return Failure([&] { TNetRule::GetNetMF(network, MakeDefaultLabels(input_mf, output_mf)); });
  };
  const std::string kText = "Labels unsuitable for this network Bad Format TNetRule::GetNetMF-";
  EXPECT_EQ(failure({5}, {4}), kText + "inputs");
  EXPECT_EQ(failure({3, 2}, {2, 2, 0}), kText + "outputs");
  EXPECT_EQ(failure({2, 3}, {2, 3}), kText + "condition");
  EXPECT_EQ(failure({3, 2}, {2, 3}), kText + "action");
}

TEST(NetRule, TakesCentresFromMemberships) {
  const TSizes terms = {3, 2};
  TTarn network(terms, 1, {{2, 3}});
  network.SetWeightLayer(1, TValues{0.125, 0.25, 0.5, -1, 7});
  network.SetWeightLayer(4, TValues{0, 0, 0.75, 0.875, 1});
  const std::string text = FileWith(network, "");
  TTarn other(terms, 1, {{2, 3}});
  const auto failure = [&](const std::string& file) {
    const TFuzzyRuleSet rules = Read(file);
    return Failure([&] { TNetRule::SetNetMF(other, rules.Inputs(), rules.Outputs()); });
  };
  EXPECT_EQ(failure(With(text, "Centre=0.2500000", "Centre=0.75")), "none");
  network.SetWeightValue(1, 0, 1, 0.75);  // above its right neighbour
  const auto weights = Weights(network);
  EXPECT_EQ(Weights(other), weights);

  const std::string kType = "Inappropriate Input MF type: Should be ";
  const std::string kFaults[][3] = {
      {"LeftShoulderedTriangular ]\n[Centre=0.1250000 RightBound=0.2500000", "Singleton ][Centre=0",
       kType + "LeftShouldered"},
      {"Type=Triangular ]\n[LeftBound=0.125", "Type=Bell ][x=0.1", kType + "Centred"},
      {"RightShoulderedTriangular ]\n[LeftBound=-1", "Bell ][x=1", kType + "RightShouldered"},
      {"Type=Triangular ]\n[LeftBound=0.75", "Type=Bell ][x=0.1",
       "Inappropriate Output MF type: Should be Centred"},
      {"Centre=7.0000000", "Centre=inf", "Input MF centre is not a finite number"},
      {"Bound=0.8750000 Centre=1", "Bound=0 Centre=2",
       "Output MF centres must lie between 0 and 1"},
  };
  for (const auto& [old_part, part, message] : kFaults) {
    EXPECT_EQ(failure(With(text, old_part, part)), message + " Bad Parameter TNetRule::SetNetMF");
  }
  const std::string kNumber = "Number of Fuzzy MF not appropriate for this network Bad Parameter ";
  EXPECT_EQ(failure(FileWith(TTarn({{3}}, 1, {{2, 3}}), "")), kNumber + "TNetRule::SetNetMF");
  EXPECT_EQ(failure(FileWith(TTarn(terms, 1, {{3, 2}}), "")), kNumber + "TNetRule:SetNetMF");
  EXPECT_EQ(Weights(other), weights);
}

TEST(NetRule, TurnsClausesIntoRuleNodes) {
  TTarn network = MakeRuleNodes();
  TNetRule::InsertRENet(network, Read(FileWith(network, R"(
      if <InputA is A 2> and not <InputB is B 0.5> or
         (<InputA is not C 0.25> or not <InputB is not A 3>)
      then <OutputB is B 4> and <OutputA is not A 1.5>)")));
  const TValues conditions = {2, -2, -2, 0, -.5, 0, 0, -.25, 0, 0, 0, 0, 0, 3, -3, 0, 0, 0, 0, 0};
  const TValues actions = {-1.5, -1.5, -1.5, 0, 0, 0, 0, 0, -4, -4, -4, 0, 4, 4, 4, 0};
  EXPECT_EQ(network.GetWeightLayer(2), conditions);
  EXPECT_EQ(network.GetWeightLayer(3), actions);

  // Of several terms the heaviest speaks for the others, which a pruned connection does not reach.
  TNetRule::InsertRENet(network, Read(FileWith(network, R"(
      if <InputA is A 1> and <InputA is B 2> or <InputB is A> or <InputB is A> or <InputB is A>
      then <OutputB is B>)")));
  EXPECT_EQ(network.GetWeightValue(2, 2, 0), -2);
  EXPECT_EQ(network.GetWeightValue(3, 3, 2), 0);
  EXPECT_EQ(network.GetWeightValue(3, 2, 2), -1);
}

// Whatever the degree, a rule that is met answers its term, and one that is not the opposite.
TEST(NetRule, MakesNetworksThatAnswer) {
  TTarn network({{2}}, 2, {{2}});
  const auto made = TNetRule::RITarn(Read(FileWith(network, R"(
      if <InputA is A 100> then <OutputA is A 100> if <InputA is B 100> then <OutputA is B 100>)")));
  TValues answer(1);
  for (const auto& [x, y] : {std::pair(0.0, 0.0), {0.5, 0.5}, {1.0, 1.0}}) {
    made->RecallPattern(TValues{x}, answer);
    EXPECT_NEAR(answer[0], y, 1e-9);
  }
}

TEST(NetRule, RefusesRulesThatItCannotHold) {
  TTarn network = MakeRuleNodes();
  const auto weights = Weights(network);
  const std::string x = "<InputA is A>";
  const std::string y = "<InputB is A>";
  const std::string then = " then <OutputA is A>";
  const std::string three = "if " + x + " or " + x + " or " + y + then + " if " + y;
  const std::pair<std::string, std::string> kFaults[] = {
      {"", "No rules to insert"},
      {"if " + x + " and (" + y + " or " + y + ")" + then, "Antecedent too deep"},
      {"if not (" + x + " and " + y + ")" + then, "Antecedent too deep"},
      {"if not not " + x + then, "Antecedent too deep"},
      {"if " + x + " and " + y + " and not " + x + then, "Two atoms name the same MF"},
      {"if " + x + then + " and <OutputA is not A 2>", "Two atoms name the same MF"},
      {"if <InputA 1>" + then, "Atom without an MF"},
      {three + " then <OutputB is A>", "Rule needs a pruned connection"},
      {three + " or " + y + then, "Too many rules for this network"},
  };
  const auto failure_of = [&](const TFuzzyRuleSet& rule_set) {
    return Failure([&] { TNetRule::InsertRENet(network, rule_set); });
  };
  const std::string kPlace = " TNetRule::InsertRENet";
  for (const auto& [rules, failure] : kFaults) {
    EXPECT_EQ(failure_of(Read(FileWith(network, rules + "\n"))),
              failure + " Bad Rule Set" + kPlace);
  }
  TTarn other(kInputMF, 4, kOutputMF);
  other.SetWeightLayer(2, TValues(20, std::numeric_limits<double>::infinity()));
  other.SetWeightLayer(3, TValues(16, 1.0));
  EXPECT_EQ(failure_of(Extracted(other)), "Degree is not a finite number Bad Rule Set" + kPlace);
  for (const TTarn& misfit : {TTarn(kInputMF, 4, {{2, 3}}), TTarn({{2, 2}}, 4, kOutputMF)}) {
    EXPECT_EQ(failure_of(Read(FileWith(misfit, three + then))),
              "Number of Fuzzy MF not appropriate for this network Bad Parameter" + kPlace);
  }
  EXPECT_EQ(Weights(network), weights);
}

TEST(NetRule, RefusesNetworksThatAreNotFuzzy) {
  const auto perceptron = MakePerceptron({2, 4, 3}, true);
  const TNetLabel labels = MakeDefaultLabels(*perceptron);
  EXPECT_EQ(labels.InputMF(), (TSizes{0, 0}));
  EXPECT_EQ(labels.OutputMF(), TSizes(3));
  EXPECT_EQ(Failure([&] { TNetRule::RETarn(*perceptron, TKQstructure(), &labels); }),
            "RETarn only works on Tarn Invalid Network Type TNetRule::RETarn");
}

TEST(NetRule, GivesBackWhatWasInserted) {
  for (int i = 0; i < 20; ++i) {
    TTarn network({{2 + i % 4, 3, 2}}, 6, {{3, 2 + i % 3}});
    network.InitWeights(-5.0, 5.0);
    const TFuzzyRuleSet rules = Extracted(network);
    const std::string text = Written(rules);
    for (const auto& inserted : {TNetRule::RITarn(rules), TNetRule::RITarn(Read(text))}) {
      EXPECT_EQ(inserted->NumRules(), static_cast<std::size_t>(rules.Rules().Count()));
      EXPECT_EQ(Written(Extracted(*inserted)), text);
    }
  }
}

}  // namespace
}  // namespace kiln
