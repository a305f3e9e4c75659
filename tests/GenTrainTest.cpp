#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Bramble/Status.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "GA-Apps/GenTrain/TTarnGA.h"
#include "Networks.h"
#include "NeuralNets/TErrorObj.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {
namespace {

constexpr TWeightBounds kBounds = {-5.0F, 5.0F};

double RecallErrorOf(const TBasicNetwork& network, const Data& set) {
  TErrorRMSObj error(network.NumOutputs());
  return network.Clone()->RecallError(&set, &error);
}

std::vector<double> WeightsOf(const TBasicNetwork& network) {
  return network.GetWeights(FMaskAll);
}

// A perceptron of 2-3-2 with a frozen connection, whose weight no float holds, and a pruned one.
class GeneticTraining : public testing::Test {
 protected:
  GeneticTraining() {
    Random::Seed(11);
    network = MakePerceptron({2, 3, 2}, true);
    network->Connections(2, 1).SetWeight(1, 0, 0.1);
    network->Connections(2, 1).SetTrainable(1, 0, false);
    network->Connections(3, 2).SetExists(0, 2, false);
    set = MakePatterns(40, 2, 2, 0.0, 1.0);
    other = MakePatterns(7, 2, 2, 0.0, 1.0);
  }

  // Trains anew and records the errors of the generations.
  double Train(TGenTrain& trainer, const RunSettings& settings, double target = 0.0) {
    errors.clear();
    Random::Seed(5);
    trainer.Initialise();
    return trainer.Train(settings, target, std::array<const Data*, 1>{set.get()},
                         [this](std::uint32_t generation, double error) {
                           errors.push_back(error);
                           EXPECT_EQ(generation, errors.size());
                           return errors.size() < stop_after;
                         });
  }

  std::shared_ptr<TMLPNetwork> network;
  std::unique_ptr<Data> set;
  std::unique_ptr<Data> other;
  std::vector<double> errors;
  std::size_t stop_after = 1000;
};

TEST_F(GeneticTraining, PutsTheNetworkOnceIntoItsPopulation) {
  TMLPGA trainer(network, kBounds, 30);
  EXPECT_THROW(trainer.Train({}, 0.0, {}), TAssertion);
  trainer.Initialise();
  const std::vector<double> weights = WeightsOf(*network);
  const Population& population = trainer.Driver()->Current();
  ASSERT_EQ(population.Size(), 30U);
  for (const Individual& individual : population.Individuals()) {
    const auto genes = individual.Genes().Values();
    ASSERT_EQ(genes.size(), weights.size());
    std::size_t same = 0;
    for (std::size_t i = 0; i < genes.size(); ++i) {
      same += genes[i].Real() == static_cast<float>(weights[i]) ? 1 : 0;
      EXPECT_LE(std::abs(genes[i].Real()), 5.0F);
    }
    EXPECT_EQ(same == weights.size(), individual.Identifier() == 30U);
    EXPECT_GE(same, 2U) << "the frozen and the pruned weight";
  }
}

TEST_F(GeneticTraining, NeverLosesItsBest) {
  const auto tarn = std::make_shared<TTarn>(TSizes{5, 3}, 3, TSizes{4, 2});
  TMLPGA perceptron_trainer(network, kBounds, 30);
  TTarnGA tarn_trainer(tarn, kBounds, 30);
  for (TGenTrain* trainer :
       {static_cast<TGenTrain*>(&perceptron_trainer), static_cast<TGenTrain*>(&tarn_trainer)}) {
    TBasicNetwork& trained =
        trainer == &tarn_trainer ? static_cast<TBasicNetwork&>(*tarn) : *network;
    const auto weights = WeightsOf(trained);
    for (const int selection : {kRouletteSelection, kTournamentSelection}) {
      for (const int crossover : {-1, 0, 1, 2, 7, 1000}) {
        trained.SetWeights(weights, FMaskAll);
        const double result = Train(*trainer, {60, 0.0F, 1, crossover, 0.02F, selection});
        EXPECT_EQ(errors.size(), 60U);
        EXPECT_TRUE(std::ranges::is_sorted(errors, std::greater<>())) << selection << crossover;
        EXPECT_LT(errors.back(), errors.front());
        EXPECT_EQ(result, errors.back());
        EXPECT_EQ(result, RecallErrorOf(trained, *set));
      }
    }
    // Another run starts from the trained network, and so does no worse.
    const double reached = errors.back();
    EXPECT_LE(Train(*trainer, {2, 0.0F}), reached);
  }
}

TEST_F(GeneticTraining, WritesTheBestGenesWhereWeightsAreTrained) {
  TMLPGA trainer(network, kBounds, 20);
  const auto before = WeightsOf(*network);
  Train(trainer, {20, 0.0F, 0, 1, 0.5F, kTournamentSelection, false});
  const auto after = WeightsOf(*network);
  const auto best = trainer.ExportBest();
  ASSERT_EQ(network->Connections(2, 1).GetWeight(1, 0), 0.1);
  EXPECT_EQ(network->Connections(3, 2).GetWeight(0, 2), 0.0);
  EXPECT_FALSE(network->Connections(3, 2).Exists(0, 2));
  std::size_t kept = 0;
  for (std::size_t i = 0; i < after.size(); ++i) {
    if (after[i] == before[i]) {
      ++kept;
    } else {
      EXPECT_EQ(after[i], static_cast<double>(best[i].Real()));
    }
  }
  EXPECT_EQ(kept, 2U) << "the frozen and the pruned one";
}

TEST_F(GeneticTraining, EndsAtTheTargetOrOnRequestAndDoesNothingInNoGenerations) {
  TMLPGA trainer(network, kBounds, 20);
  const auto weights = WeightsOf(*network);
  EXPECT_EQ(Train(trainer, {0, 0.0F}), RecallErrorOf(*network, *set));
  EXPECT_EQ(WeightsOf(*network), weights);
  EXPECT_TRUE(errors.empty());
  stop_after = 4;
  const double stopped = Train(trainer, {30, 0.0F});
  ASSERT_EQ(errors.size(), 4U);
  EXPECT_EQ(stopped, errors[3]);
  stop_after = 1000;
  network->SetWeights(weights, FMaskAll);
  Train(trainer, {60, 0.0F, 1, -1, 0.05F});
  const double target = errors[30];
  network->SetWeights(weights, FMaskAll);
  EXPECT_LE(Train(trainer, {60, 0.0F, 1, -1, 0.05F}, target), target * 1.000001);
  EXPECT_LE(errors.size(), 31U);
}

TEST_F(GeneticTraining, MeasuresTheMeanOverItsSets) {
  TMLPGAEval evaluator(*network, kBounds);
  evaluator.SetData(std::array<const Data*, 2>{set.get(), other.get()});
  const TGenTrainRecord record = evaluator.Evaluate(evaluator.SeedGenome());
  const double expected = (RecallErrorOf(*network, *set) + RecallErrorOf(*network, *other)) / 2.0;
  EXPECT_EQ(record.DblError, expected);
  EXPECT_EQ(record.FltFitness, static_cast<float>(1.0 / expected));

  Data exact(1, 2, 2, false);
  exact.AddRow(TValues{0.5, 0.5}, TValues{0.5, 0.5});
  evaluator.SetData(std::array<const Data*, 1>{&exact});
  const std::vector<GeneValue> zeros(evaluator.SeedGenome().size());
  network->Connections(2, 1).SetWeight(1, 0, 0.0);
  EXPECT_EQ(evaluator.Evaluate(zeros).FltFitness, 2147483648.0F) << "no error at all";
}

// An evaluator that can repair only chromosomes whose first gene is positive.
class Choosy : public TMLPGAEval {
 public:
  using TMLPGAEval::TMLPGAEval;
  bool Repair(std::span<GeneValue> genes) override { return genes[0].Real() > 0.0F; }
};

TEST_F(GeneticTraining, GivesChanceToWhatIsBeyondRepair) {
  Choosy evaluator(*network, kBounds);
  evaluator.SetData(std::array<const Data*, 1>{set.get()});
  std::vector<std::vector<GeneValue>> genes(4, evaluator.SeedGenome());
  std::vector<std::span<GeneValue>> views(genes.begin(), genes.end());
  for (std::size_t i = 0; i < 4; ++i) genes[i][0] = GeneValue::OfReal(i == 2 ? 1.0F : -1.0F);
  std::vector<float> fitness(4);
  Random::Seed(3);
  evaluator.EvaluatePopulation({}, views, fitness);
  Random::Seed(3);
  for (const std::size_t i : {0U, 1U, 3U}) {
    EXPECT_EQ(fitness[i], static_cast<float>(0.5 * Random::Next() / 32767.0));
  }
  EXPECT_EQ(fitness[2], evaluator.Lowest().FltFitness);
  EXPECT_EQ(evaluator.Lowest().DblError, RecallErrorOf(*network, *set));
}

TEST_F(GeneticTraining, LeavesTheNetworkAloneWhenItFails) {
  TMLPGA trainer(network, kBounds, 10);
  const auto weights = WeightsOf(*network);
  Data small(5, 1, 2, false);
  const Data empty(5, 2, 2, false);
  for (const Data* bad : {static_cast<const Data*>(&small), &empty}) {
    trainer.Initialise();
    EXPECT_THROW(trainer.Train({}, 0.0, std::array{bad}), TException);
  }
  EXPECT_THROW(Train(trainer, {5, 0.0F, 11}), TAssertion) << "more elites than individuals";
  const std::string unknown = WhatOf([&] { Train(trainer, {5, 0.0F, 1, 1, 0.0F, 99}); });
  EXPECT_NE(unknown.find("IntReturn == SUCCESS"), std::string::npos) << unknown;
  // Errors that are no numbers end a run at once, with or without scaling.
  set->AddRow(TValues{0.0, 0.0}, TValues{NAN, 0.0});
  for (const bool scale : {true, false}) {
    const RunSettings settings{.IntGenerations = 5, .BolScale = scale};
    EXPECT_THROW(Train(trainer, settings), TException);
    EXPECT_EQ(errors.size(), 1U);
  }
  EXPECT_EQ(WeightsOf(*network), weights);
}

TEST_F(GeneticTraining, ChecksWhatItIsMadeFrom) {
  const auto make = [this](float lower, float upper, std::size_t population) {
    return [=, this] { TMLPGA trainer(network, {lower, upper}, population); };
  };
  EXPECT_THROW(make(1.0F, 0.0F, 5)(), TException);
  EXPECT_THROW(make(NAN, 0.0F, 5)(), TException);
  EXPECT_THROW(make(0.0F, INFINITY, 5)(), TException);
  EXPECT_THROW(make(0.0F, 1.0F, 0)(), TException);
  EXPECT_THROW(make(0.0F, 1.0F, TGenTrain::kMaxPopulation + 1)(), TException);
  const auto large = std::make_shared<TMLPNetwork>(TSizes{20, 20}, false);
  EXPECT_THROW(TMLPGA(large, kBounds, TGenTrain::kMaxPopulation), TException);
}

// --- Tarns -----------------------------------------------------------------------------------

TEST(GeneticRepair, OrdersGroupsByThePlacesOfItsPasses) {
  const struct {
    TSizes groups;
    std::vector<float> before;
    std::vector<float> after;
  } cases[] = {
      {{3}, {.9F, .1F, .5F}, {.1F, .5F, .9F}},
      {{4}, {.4F, .3F, .2F, .1F}, {.1F, .2F, .3F, .4F}},
      {{4}, {.1F, .2F, .4F, .3F}, {.1F, .2F, .4F, .3F}},
      {{5}, {.1F, .5F, .4F, .3F, .2F}, {.1F, .2F, .4F, .3F, .5F}},
      {{2, 3}, {.2F, .1F, .5F, .4F, .3F}, {.1F, .2F, .3F, .4F, .5F}},
      // The group behind one of five begins a place late; at the end of a side it is cut short.
      {{5, 2}, {.5F, .4F, .3F, .2F, .1F, .9F, .8F}, {.1F, .2F, .3F, .4F, .5F, .9F, .8F}},
      {{5, 2, 2},
       {.5F, .4F, .3F, .2F, .1F, .9F, .8F, .7F, .6F},
       {.1F, .2F, .3F, .4F, .5F, .9F, .7F, .8F, .6F}},
      // The passes of eight end at 21, where there are no centres any more.
      {{8, 2}, {8, 7, 6, 5, 4, 3, 2, 1, .9F, .8F}, {1, 2, 6, 3, 4, 5, 7, 8, .9F, .8F}},
  };
  for (const auto& [groups, before, after] : cases) {
    TTarn tarn(groups, 1, groups);
    TTarnGAEval evaluator(tarn, kBounds);
    const auto both_sides = [&](const std::vector<float>& centres) {
      std::vector<GeneValue> genes;
      for (const float centre : centres) genes.push_back(GeneValue::OfReal(centre));
      const std::vector<GeneValue> side = genes;
      genes.insert(genes.end(), 2 * centres.size(), GeneValue::OfReal(-1.0F));  // of the one rule
      genes.insert(genes.end(), side.begin(), side.end());
      return genes;
    };
    std::vector<GeneValue> genes = both_sides(before);
    EXPECT_TRUE(evaluator.Repair(genes));
    EXPECT_EQ(genes, both_sides(after)) << testing::PrintToString(before);
  }
}

TEST(GeneticRepair, PassesOverFrozenCentres) {
  TTarn tarn(TSizes{4}, 1, TSizes{2});
  tarn.FreezeWeight(1, 0, 1);
  TTarnGAEval evaluator(tarn, kBounds);
  std::vector<GeneValue> genes(4 + 4 + 2 + 2);
  const float before[] = {.9F, .1F, .3F, .2F};
  for (std::size_t i = 0; i < 4; ++i) genes[i] = GeneValue::OfReal(before[i]);
  EXPECT_TRUE(evaluator.Repair(genes));
  const float after[] = {.2F, .1F, .3F, .9F};
  for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(genes[i].Real(), after[i]) << i;
}

TEST_F(GeneticTraining, DrawsCentresFromZeroToOneAndRulesFromTheBounds) {
  const auto tarn = std::make_shared<TTarn>(TSizes{5, 4}, 3, TSizes{4, 5});
  TTarnGA trainer(tarn, {-3.0F, -2.0F}, 50);
  trainer.Initialise();
  const Population& population = trainer.Driver()->Current();
  for (const Individual& individual : population.Individuals().first(49)) {
    const auto genes = individual.Genes().Values();
    ASSERT_EQ(genes.size(), 9U + 27U + 27U + 9U);
    for (std::size_t i = 0; i < genes.size(); ++i) {
      const bool is_rule = i >= 9 && i < 63;
      EXPECT_GE(genes[i].Real(), is_rule ? -3.0F : 0.0F) << i;
      EXPECT_LE(genes[i].Real(), is_rule ? -2.0F : 1.0F) << i;
    }
  }
}

TEST_F(GeneticTraining, LeavesATarnThatRecallsWhateverItsCentresOrder) {
  const auto tarn = std::make_shared<TTarn>(TSizes{5, 6}, 3, TSizes{4, 5});
  tarn->InitWeights(-1.0, 1.0);
  tarn->SetWeightValue(1, 0, 2, 0.3);
  tarn->FreezeWeight(1, 0, 2);
  tarn->SetWeightValue(4, 8, 1, 0.7);
  tarn->FreezeWeight(4, 8, 1);
  tarn->FreezeWeight(2, 3, 1);
  const double rule = tarn->GetWeightValue(2, 3, 1);
  TTarnGA trainer(tarn, kBounds, 20);
  const auto far = MakePatterns(200, 2, 2, -0.5, 1.5);
  for (int run = 0; run < 5; ++run) {
    const double result = Train(trainer, {10, 0.0F, 1, -1, 0.2F});
    EXPECT_EQ(result, RecallErrorOf(*tarn, *set));
    for (const int layer : {1, 4}) {
      for (const double centre : tarn->GetWeightLayer(layer)) {
        EXPECT_GE(centre, 0.0);
        EXPECT_LE(centre, 1.0);
      }
    }
    EXPECT_NO_THROW(tarn->Recall(far.get()));
  }
  EXPECT_EQ(tarn->GetWeightValue(1, 0, 2), 0.3);
  EXPECT_EQ(tarn->GetWeightValue(4, 8, 1), 0.7);
  EXPECT_EQ(tarn->GetWeightValue(2, 3, 1), rule);
}

// The centre of an output's term beyond 1 makes networks fail to recall: the training fails too.
TEST_F(GeneticTraining, GivesWeightsBackWhenRecallFails) {
  const auto tarn = std::make_shared<TTarn>(TSizes{2, 2}, 2, TSizes{2, 2});
  tarn->InitWeights(-1.0, 1.0);
  for (const int from : {0, 1}) tarn->SetWeightValue(4, from, 0, 1.5);
  const auto weights = WeightsOf(*tarn);
  TTarnGA trainer(tarn, kBounds, 5);
  testing::internal::CaptureStdout();
  EXPECT_THROW(Train(trainer, {3, 0.0F}), TAssertion);
  testing::internal::GetCapturedStdout();
  EXPECT_EQ(WeightsOf(*tarn), weights);
}

}  // namespace
}  // namespace kiln
