#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Bramble/Status.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "GA-Apps/GenTrain/TTarnGA.h"
#include "Networks.h"
#include "NeuralNets/TIterateObjFlags.h"

namespace kiln {
namespace {

constexpr TWeightBounds kBounds = {-5.0F, -2.0F};

// Finds nothing that it could repair.
class TStrictEval : public TMLPGAEval {
 public:
  using TMLPGAEval::TMLPGAEval;
  bool Repair(std::span<GeneValue>) const override { return false; }
};

// Networks with frozen weights, which no float holds, and a pruned one.
class GeneticTraining : public testing::Test {
 protected:
  GeneticTraining() {
    Random::Seed(11);
    perceptron = MakePerceptron({2, 3, 2}, true);
    perceptron->Connections(2, 1).SetWeight(1, 0, 0.1);
    perceptron->Connections(2, 1).SetTrainable(1, 0, false);
    perceptron->Connections(3, 2).SetExists(0, 2, false);
    tarn = std::make_shared<TTarn>(TSizes{5, 6}, 3, TSizes{4, 5});
    tarn->InitWeights(-1.0, 1.0);
    for (const auto& [layer, from, to] : {std::array{1, 0, 2}, {2, 3, 1}, {4, 8, 1}}) {
      tarn->SetWeightValue(layer, from, to, 0.7);
      tarn->FreezeWeight(layer, from, to);
    }
    set = MakePatterns(40, 2, 2, 0.0, 1.0);
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

  // Trains a network in every way that there is to breed; it has `fixed` weights that stay.
  void TrainInEveryWay(TGenTrain& trainer, TBasicNetwork& network, int fixed) {
    const TValues start = network.GetWeights(FMaskAll);
    std::vector<TMask> flags;
    TIterateObjGetFlags get(flags, FMaskAll);
    network.Read(get);
    ASSERT_EQ(std::ranges::count(flags, FMaskAll), std::ssize(start) - fixed);
    for (const SelectionMethod selection :
         {SelectionMethod::kRoulette, SelectionMethod::kTournament}) {
      for (const int crossover : {-1, 0, 1, 2, 7, 1000}) {
        network.SetWeights(start, FMaskAll);
        const std::size_t elites = crossover > 1 ? 3 : 1;
        const double result = Train(trainer, {30, 0.0F, elites, crossover, 0.02F, selection});
        EXPECT_EQ(errors.size(), 30U);
        EXPECT_TRUE(std::ranges::is_sorted(errors, std::greater<>())) << crossover;
        EXPECT_LT(errors.back(), errors.front());
        EXPECT_EQ(result, errors.back());
        EXPECT_EQ(result, ErrorOn(network, *set));
        const TValues trained = network.GetWeights(FMaskAll);
        for (std::size_t i = 0; i < start.size(); ++i) {
          const double bred = trainer.ExportBest()[i].Real();
          EXPECT_EQ(trained[i], flags[i] == FMaskAll ? bred : start[i]) << i;
        }
      }
    }
    // Another run starts from the trained network, and so does no worse.
    const double reached = errors.back();
    EXPECT_LE(Train(trainer, {2, 0.0F}), reached);
  }

  std::shared_ptr<TMLPNetwork> perceptron;
  std::shared_ptr<TTarn> tarn;
  std::unique_ptr<Data> set;
  std::vector<double> errors;
  std::size_t stop_after = 1000;
};

TEST_F(GeneticTraining, NeverLosesItsBestAndLeavesFixedWeightsAlone) {
  TMLPGA perceptron_trainer(perceptron, {-100.0F, 100.0F}, 30);
  TrainInEveryWay(perceptron_trainer, *perceptron, 2);
  TTarnGA tarn_trainer(tarn, {-5.0F, 5.0F}, 30);
  TrainInEveryWay(tarn_trainer, *tarn, 3);
  EXPECT_NO_THROW(tarn->Recall(MakePatterns(200, 2, 2, -0.5, 1.5).get())) << "crossed centres";
}

TEST_F(GeneticTraining, PutsTheNetworkOnceAmongRandomIndividuals) {
  TTarnGA trainer(tarn, kBounds, 50);
  trainer.Initialise();
  const TValues weights = tarn->GetWeights(FMaskAll);
  const Population& population = trainer.Driver()->Current();
  ASSERT_EQ(population.Size(), 50U);
  for (const Individual& individual : population.Individuals()) {
    const auto genes = individual.Genes().Values();
    ASSERT_EQ(genes.size(), weights.size());
    std::size_t same = 0;
    for (std::size_t i = 0; i < genes.size(); ++i) {
      if (genes[i].Real() == static_cast<float>(weights[i])) {
        ++same;
        continue;
      }
      const bool is_rule = i >= 11 && i < weights.size() - 9;
      EXPECT_GE(genes[i].Real(), is_rule ? -5.0F : 0.0F) << i;
      EXPECT_LE(genes[i].Real(), is_rule ? -2.0F : 1.0F) << i;
    }
    EXPECT_EQ(same == weights.size(), individual.Identifier() == 50U);
  }
}

TEST_F(GeneticTraining, EndsAtTheTargetOrOnRequestAndDoesNothingInNoGenerations) {
  TMLPGA trainer(perceptron, kBounds, 20);
  const TValues weights = perceptron->GetWeights(FMaskAll);
  EXPECT_EQ(Train(trainer, {0, 0.0F}), ErrorOn(*perceptron, *set));
  EXPECT_EQ(perceptron->GetWeights(FMaskAll), weights);
  Train(trainer, {60, 0.0F, 1, -1, 0.05F});
  const double target = errors.at(30);
  perceptron->SetWeights(weights, FMaskAll);
  EXPECT_LE(Train(trainer, {60, 0.0F, 1, -1, 0.05F}, target), target * 1.000001);
  EXPECT_LE(errors.size(), 31U);
  stop_after = 4;
  Train(trainer, {30, 0.0F});
  EXPECT_EQ(errors.size(), 4U);
}

TEST_F(GeneticTraining, LeavesTheNetworkAloneWhenItFails) {
  TMLPGA trainer(perceptron, kBounds, 10);
  const TValues weights = perceptron->GetWeights(FMaskAll);
  EXPECT_EQ(BrokenCheck([&] { Train(trainer, {5, 0.0F, 11}); }), "NdxElites <= NdxPopSize");
  // Errors that are no numbers end a run at once, with or without scaling.
  set->AddRow(TValues{0.0, 0.0}, TValues{NAN, 0.0});
  for (const bool scale : {true, false}) {
    EXPECT_EQ(Failure([&] { Train(trainer, {.IntGenerations = 5, .BolScale = scale}); }),
              "no individual has an error that is a number Invalid Parameter TGenTrain::Train");
    EXPECT_EQ(errors.size(), 1U);
  }
  EXPECT_EQ(perceptron->GetWeights(FMaskAll), weights);
}

TEST_F(GeneticTraining, TakesTheReciprocalOfTheMeanErrorForFitness) {
  const auto other = MakePatterns(7, 2, 2, 0.0, 1.0);
  TMLPGAEval evaluator(*perceptron, kBounds);
  evaluator.SetData(std::array<const Data*, 2>{set.get(), other.get()});
  const std::vector<GeneValue> genes = evaluator.SeedGenome();
  const auto record = evaluator.Evaluate(genes);
  const double mean = (ErrorOn(*perceptron, *set) + ErrorOn(*perceptron, *other)) / 2.0;
  EXPECT_EQ(record.DblError, mean);
  EXPECT_EQ(record.FltFitness, static_cast<float>(1.0 / mean));

  Data exact(1, 2, 2, false);
  exact.AddRow(TValues{0.0, 0.0}, TValues{0.5, 0.5});
  evaluator.SetData(std::array<const Data*, 1>{&exact});
  const std::vector<GeneValue> zeros(genes.size());
  EXPECT_EQ(evaluator.Evaluate(zeros).FltFitness, 2147483648.0F) << "no error at all";
}

TEST_F(GeneticTraining, DrawsAFitnessForWhatIsBeyondRepair) {
  TStrictEval evaluator(*perceptron, kBounds);
  std::vector<GeneValue> genes = evaluator.SeedGenome();
  const std::vector<std::span<GeneValue>> population(50, genes);
  std::vector<float> fitness(50, 9.0F);
  evaluator.EvaluatePopulation({}, population, fitness);
  const auto [least, most] = std::ranges::minmax(fitness);
  EXPECT_TRUE(0.0F <= least && least < 0.1F && 0.4F < most && most <= 0.5F) << least << most;
  EXPECT_TRUE(std::isnan(evaluator.AverageError()));
}

TEST_F(GeneticTraining, RefusesWhatItCannotTrainOn) {
  const float infinite = std::numeric_limits<float>::infinity();
  const auto make = [&](TWeightBounds bounds, std::size_t population) {
    return Failure([&] { TMLPGA(perceptron, bounds, population); });
  };
  for (const TWeightBounds& bounds : {TWeightBounds{1, 0}, {-infinite, 0}, {0, infinite}}) {
    EXPECT_TRUE(make(bounds, 5).starts_with("weights cannot be drawn from such bounds"));
  }
  EXPECT_TRUE(make(kBounds, 0).starts_with("a population of 0 is not within 1 to "));
  EXPECT_TRUE(make(kBounds, TGenTrain::kMaxPopulation + 1).ends_with("TGenTrain::TGenTrain"));
  TMLPGAEval evaluator(*perceptron, kBounds);
  EXPECT_EQ(Failure([&] { evaluator.SetData({}); }).substr(0, 13), "no data sets ");
  set->Clear();
  TMLPGA trainer(perceptron, kBounds, 5);
  EXPECT_TRUE(Failure([&] { Train(trainer, {5, 0.0F}); }).starts_with("the data set has no rows"));
}

TEST(GeneticRepair, OrdersGroupsByThePlacesOfItsPasses) {
  const struct {
    TSizes groups;
    std::vector<float> before;
    std::vector<float> after;
  } cases[] = {
      {{3}, {9, 1, 5}, {1, 5, 9}},
      {{4}, {1, 2, 4, 3}, {1, 2, 4, 3}},
      {{5}, {1, 5, 4, 3, 2}, {1, 2, 4, 3, 5}},
      {{2, 3}, {2, 1, 5, 4, 3}, {1, 2, 3, 4, 5}},
      // The group behind one of five begins a place late; at the end of a side it is cut short.
      {{5, 2}, {5, 4, 3, 2, 1, 9, 8}, {1, 2, 3, 4, 5, 9, 8}},
      {{5, 2, 2}, {5, 4, 3, 2, 1, 9, 8, 7, 6}, {1, 2, 3, 4, 5, 9, 7, 8, 6}},
      // The passes of eight end at 21, where there are no centres any more.
      {{8, 2}, {8, 7, 6, 5, 4, 3, 2, 1, 10, 9}, {1, 2, 6, 3, 4, 5, 7, 8, 10, 9}},
  };
  for (const auto& [groups, before, after] : cases) {
    TTarn network(groups, 1, groups);
    TTarnGAEval evaluator(network, kBounds);
    const auto both_sides = [](const std::vector<float>& centres) {
      std::vector<GeneValue> genes(4 * centres.size());  // those of the one rule in between are 0
      for (std::size_t i = 0; i < centres.size(); ++i) {
        genes[i] = genes[3 * centres.size() + i] = GeneValue::OfReal(centres[i]);
      }
      return genes;
    };
    std::vector<GeneValue> genes = both_sides(before);
    EXPECT_TRUE(evaluator.Repair(genes));
    EXPECT_EQ(genes, both_sides(after)) << testing::PrintToString(before);
  }
}

}  // namespace
}  // namespace kiln
