#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "GA-Apps/GenTrain/TMLPGA.h"
#include "KQmessage/TKQstructure.h"
#include "Networks.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/Maps/TMapScore.h"
#include "NeuralNets/TScore.h"
#include "NeuralNets/Training/TBackpropModule.h"

namespace kiln {
namespace {

TKQstructure Params(const std::string& method) {
  TKQstructure params("Params");
  params.SetDouble("LearningRate", 0.5);
  params.SetDouble("Momentum", 0.5);
  params.SetString("Method", method);
  return params;
}

const TTrainPoint& Least(const std::vector<TTrainPoint>& points) {
  return *std::ranges::min_element(points, {}, &TTrainPoint::validation);
}

// Whatever pass trains, validation leaves training alone and ends it at the least error.
TEST(ValidationTest, KeepsTheWeightsOfTheLeastErrorAndNothingElseChanges) {
  Random::Seed(8);
  const auto training = MakePatterns(12, 3, 2, 0.0, 1.0);
  const auto validation = MakePatterns(9, 3, 2, 0.0, 1.0);
  for (const char* method : {"gradient", "rprop", "adam"}) {
    for (const int hidden : {4, 300}) {
      const auto network = MakePerceptron({3, hidden, 2}, true);
      const auto twin = std::make_shared<TMLPNetwork>(*network);
      TBackpropModule with(network), without(twin);
      TKQstructure params = Params(method);
      int epochs = 400;
      const TValidationSet set = {*validation, 15};
      const double error = with.Train(*training, params, epochs, {}, &set);
      const auto points = with.History().Points();
      ASSERT_LT(std::ssize(points), 400) << method;
      EXPECT_EQ(points.back().epoch, epochs + 1);
      EXPECT_EQ(Least(points).epoch + 15, points.back().epoch);
      EXPECT_EQ(Least(points).validation, error);
      EXPECT_EQ(ErrorOn(*network, *validation), error);
      int least = Least(points).epoch;
      without.Train(*training, params, least);
      EXPECT_EQ(network->GetWeights(FMaskAll), twin->GetWeights(FMaskAll));
      EXPECT_EQ(without.History().Points().back().training, Least(points).training);
    }
  }
}

TEST(ValidationTest, GoesOnWithoutPatienceAndForgetsCallsThatFail) {
  Random::Seed(9);
  const auto network = MakePerceptron({2, 3, 1}, true);
  const auto set = MakePatterns(6, 2, 1, 0.0, 1.0);
  TBackpropModule trainer(network);
  TKQstructure params = Params("gradient");
  const TValidationSet validation = {*set};
  int epochs = 50;
  trainer.Train(*set, params, epochs, {}, &validation);
  EXPECT_EQ(epochs, 50);
  const auto fail = [](int epoch, double) -> bool { return epoch < 3 ? true : throw 0; };
  EXPECT_THROW(trainer.Train(*set, params, epochs, fail), int);
  EXPECT_EQ(trainer.History().Epochs(), 50);
  epochs = 1;
  trainer.Train(*set, params, epochs);
  EXPECT_EQ(trainer.History().Points().back().epoch, 51);
  EXPECT_TRUE(std::isnan(trainer.History().Points().back().validation));
  const Data empty(1, 2, 1, false);
  const TValidationSet nothing = {empty};
  EXPECT_EQ(Failure([&] { trainer.Train(*set, params, epochs, {}, &nothing); }),
            "the data set has no rows Invalid Parameter TValidation::TValidation");
}

TEST(ValidationTest, ChoosesAmongTheBestOfGenerations) {
  Random::Seed(10);
  const auto network = MakePerceptron({2, 3, 1}, true);
  const auto training = MakePatterns(8, 2, 1, 0.0, 1.0);
  const auto validation = MakePatterns(8, 2, 1, 0.0, 1.0);
  TMLPGA trainer(network, {-5.0F, 5.0F}, 20);
  trainer.Initialise();
  const TValidationSet set = {*validation, 10};
  RunSettings settings;
  settings.IntGenerations = 300;
  settings.FltMutation = 0.1F;
  const double error =
      trainer.Train(settings, 0.0, std::array<const Data*, 1>{training.get()}, {}, &set);
  const auto points = trainer.History().Points();
  EXPECT_EQ(Least(points).epoch + 10, points.back().epoch);
  EXPECT_EQ(Least(points).validation, error);
  EXPECT_EQ(ErrorOn(*network, *validation), error);
}

TEST(TrainHistoryTest, ThinsOutAndKeepsTheLastAndTheLeast) {
  TTrainHistory history;
  constexpr int kEpochs = 100000;
  for (int epoch = 1; epoch <= kEpochs; ++epoch) {
    history.Add(epoch, epoch == 77777 ? 0.5 : 1.0);
    if (epoch % 1777 == 0) {
      EXPECT_LE(history.Points().size(), TTrainHistory::kMaxPoints);
    }
  }
  {
    const THistoryOfCall failed(history, 2);
    history.Add(0.0, 0.25);
    history.Add(0.0, 0.125);
  }
  const auto points = history.Points();
  EXPECT_GT(points.size(), TTrainHistory::kMaxPoints / 3);
  EXPECT_EQ(Least(points).epoch, 77777);
  EXPECT_EQ(points.back().epoch, kEpochs);
  int before = 0;
  for (const TTrainPoint& point : points) {
    EXPECT_GT(point.epoch, before);
    EXPECT_LE(point.epoch - before, 64);
    EXPECT_EQ(point.training, before = point.epoch);
  }
}

// Layers that pass the inputs on as they are: the answers are known.
TEST(ScoreTest, CountsClassesAndMeasuresMaps) {
  TMLPNetwork network(TSizes{3, 3}, false);
  network.Layer(2).SetActivation(ActLinear);
  for (const std::size_t i : {0U, 1U, 2U}) network.Connections(2, 1).SetWeight(i, i, 1.0);
  Data set(4, 3, 3, false);
  set.AddRow(TValues{0.5, 0.5, 0}, TValues{1, 0, 0});
  set.AddRow(TValues{0, 0, 1}, TValues{0, 0, 1});
  set.AddRow(TValues{0, 0.25, 1}, TValues{0, 1, 0});
  const TScore score = MeasureScore(network, set);
  EXPECT_EQ(score.right, 2);
  EXPECT_EQ(MeasureConfusion(network, set)->Count(1, 2), 1);
  EXPECT_DOUBLE_EQ(score.error, std::sqrt((0.25 + 0.25 + 0.5625 + 1.0) / 9.0));
  set.AddRow(TValues{0, 0, 1}, TValues{0, 1, 1});
  EXPECT_FALSE(MeasureScore(network, set).right || MeasureConfusion(network, set));

  TKohonenNetwork map(1, {2, 3});
  std::ranges::copy(TValues{0.0, 9.0, 1.0, 2.0, 7.0, 5.0}, map.Prototypes().begin());
  Data rows(3, 1, 0, false);
  for (const double x : {0.25, 6.5, 2.0}) rows.AddRow(TValues{x}, {});
  const TMapScore map_score = MeasureMap(map, rows);
  EXPECT_DOUBLE_EQ(map_score.quantisation, (0.25 + 0.5 + 0.0) / 3);
  // Nearest are units 0 and 2, 4 and 5, 3 and 2: only the second pair are neighbours.
  EXPECT_DOUBLE_EQ(map_score.topographic, 2.0 / 3);
}

}  // namespace
}  // namespace kiln
