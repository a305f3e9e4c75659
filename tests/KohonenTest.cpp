#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "Networks.h"
#include "NeuralNets/Kernels.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TKohonenModule.h"
#include "NeuralNets/TNeighbourhood.h"

namespace kiln {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::shared_ptr<TKohonenNetwork> MakeMap(int inputs, const TSizes& sizes) {
  auto map = std::make_shared<TKohonenNetwork>(inputs, sizes);
  map->Randomize(0.0, 1.0);
  return map;
}

TValues PrototypesOf(const TKohonenNetwork& map) {
  return {map.Prototypes().begin(), map.Prototypes().end()};
}

// A set without outputs whose rows are given one after the other.
std::unique_ptr<Data> MakeSet(const std::vector<TValues>& rows) {
  const auto count = static_cast<std::int64_t>(rows.size());
  auto data = std::make_unique<Data>(count, std::ssize(rows[0]), 0, false);
  for (const TValues& row : rows) data->AddRow(row, {});
  return data;
}

// The rules of the map, unit by unit and value by value, on three dimensions (those that a map does
// not have are of size 1).
struct TSlowMap {
  int Inputs() const { return static_cast<int>(w.size()) / (size[0] * size[1] * size[2]); }
  double& At(int unit, int i) { return w[static_cast<std::size_t>(unit * Inputs() + i)]; }

  int Winner(const TValues& x) {
    double best = 1e30;
    int winner = -1;
    for (int j = 0; j < size[0] * size[1] * size[2]; ++j) {
      double d = 0.0;
      for (int i = 0; i < Inputs(); ++i) {
        const double difference = x[static_cast<std::size_t>(i)] - At(j, i);
        d += difference * difference;
      }
      if (d < best) {
        best = d;
        winner = j;
      }
    }
    return winner;
  }

  // Radii of -1 stand for none at all.
  void Learn(const TValues& x, double rate, const int (&r)[3]) {
    const int winner = Winner(x);
    for (int j = 0; j < size[0] * size[1] * size[2]; ++j) {
      if (r[0] < 0 ? j != winner : !IsNear(j, winner, r)) continue;
      for (int i = 0; i < Inputs(); ++i) {
        At(j, i) += rate * (x[static_cast<std::size_t>(i)] - At(j, i));
      }
    }
  }

  bool IsNear(int unit, int winner, const int (&r)[3]) const {
    for (int k = 2; k >= 0; --k) {
      if (std::abs(unit % size[k] - winner % size[k]) > r[k]) return false;
      unit /= size[k];
      winner /= size[k];
    }
    return true;
  }

  int size[3];
  TValues w;
};

TEST(KohonenTest, TrainingFollowsItsRulesOnEveryGridAndProcessor) {
  constexpr double kRate = 0.7, kRateFactor = 0.85, kRadiusFactor = 0.6;
  constexpr int kEpochs = 6;
  struct TCase {
    int inputs;
    TSizes sizes;
    TValues radii;
    int slow_size[3];
  };
  const TCase cases[] = {
      {3, {13}, {4.5}, {1, 1, 13}},
      {3, {13}, {}, {1, 1, 13}},
      {4, {7, 9}, {3.0, 5.7}, {1, 7, 9}},
      {4, {7, 9}, {}, {1, 7, 9}},
      {5, {3, 4, 5}, {2, 0, 9}, {3, 4, 5}},
      {5, {3, 4, 5}, {}, {3, 4, 5}},
      {1, {8, 1}, {0.5, 100}, {1, 8, 1}},
      {17, {5, 16}, {1, 1}, {1, 5, 16}},
      {2, {2, 3, 11}, {1e300, 3, 4}, {2, 3, 11}},
  };
  for (const TKernelLevel level :
       {TKernelLevel::kBaseline, TKernelLevel::kAvx2, TKernelLevel::kAvx512}) {
    if (!ForceKernels(level)) continue;
    for (const TCase& c : cases) {
      const auto map = MakeMap(c.inputs, c.sizes);
      TSlowMap slow{{c.slow_size[0], c.slow_size[1], c.slow_size[2]}, PrototypesOf(*map)};
      const auto data = MakePatterns(40, c.inputs, 0, 0.0, 1.0);
      TValues radii = c.radii;
      ::testing::internal::CaptureStdout();
      TKohonenModule(map).Train(*data, kRate, radii, kEpochs, kRateFactor, kRadiusFactor);
      EXPECT_EQ(c.radii.empty() ? "" : "0 1 2 3 4 5 ", ::testing::internal::GetCapturedStdout());

      TValues slow_radii = c.radii;
      double rate = kRate;
      for (int epoch = 0; epoch < kEpochs; ++epoch) {
        int r[3] = {};
        if (radii.empty()) r[0] = -1;
        for (std::size_t k = 0; k < radii.size(); ++k) {
          slow_radii[k] = (slow_radii[k] - 1.0) * kRadiusFactor + 1.0;
          r[3 - radii.size() + k] = static_cast<int>(std::min(slow_radii[k], 1000.0));
        }
        rate *= kRateFactor;
        for (int n = 0; n < data->DataRows(); ++n) {
          const auto x = data->Row(n).Inputs;
          slow.Learn({x.begin(), x.end()}, rate, r);
        }
      }
      EXPECT_EQ(slow_radii, radii);
      for (std::size_t i = 0; i < slow.w.size(); ++i) {
        ASSERT_NEAR(slow.w[i], map->Prototypes()[i], 1e-12);
      }
    }
  }
}

TEST(KohonenTest, UnitsAreNumberedWithTheLastCoordinateFastest) {
  const TMapGrid grid({3, 1, 4, 2});
  int p[4];
  std::size_t unit = 0;
  for (int a = 0; a < 3; ++a) {
    for (int c = 0; c < 4; ++c) {
      for (int d = 0; d < 2; ++d, ++unit) {
        grid.CoordinatesOf(unit, p);
        EXPECT_EQ(std::make_tuple(a, 0, c, d), std::make_tuple(p[0], p[1], p[2], p[3]));
        EXPECT_EQ(unit, grid.UnitAt(p));
      }
    }
  }
  EXPECT_EQ(unit, grid.NumUnits());
}

// The units that a neighbourhood reaches.
TSizes Reached(const TMapGrid& grid, std::size_t winner, const TValues& radii) {
  TNeighbourhood neighbourhood(grid);
  if (!radii.empty()) neighbourhood.SetRadii(radii);
  TSizes units;
  neighbourhood.ForEachRow(winner, [&](std::size_t first, std::size_t last) {
    for (; first < last; ++first) units.push_back(static_cast<int>(first));
  });
  return units;
}

TEST(KohonenTest, NeighbourhoodsEndWithTheGrid) {
  const TMapGrid grid({5, 5});
  EXPECT_EQ((TSizes{0, 1, 2, 5, 6, 7, 10, 11, 12}), Reached(grid, 0, {2, 2}));
  EXPECT_EQ((TSizes{18, 19, 23, 24}), Reached(grid, 24, {1.99, 1}));
  EXPECT_EQ((TSizes{12}), Reached(grid, 12, {}));
  EXPECT_EQ((TSizes{12}), Reached(grid, 12, {0.9, -0.9}));
  EXPECT_EQ((TSizes{10, 11, 12, 13, 14}), Reached(grid, 12, {0, 1e300}));
  EXPECT_EQ(25u, Reached(grid, 12, {kInfinity, 1e10}).size());
  for (const double none : {-1.0, -1e300, -kInfinity, kNaN}) {
    EXPECT_TRUE(Reached(grid, 12, {5, none}).empty()) << none;
  }
}

TEST(KohonenTest, TheLowerOfEqualUnitsWinsWhereverTheyStand) {
  for (const TKernelLevel level :
       {TKernelLevel::kBaseline, TKernelLevel::kAvx2, TKernelLevel::kAvx512}) {
    if (!ForceKernels(level)) continue;
    for (const int inputs : {1, 3, 8}) {
      const auto map = MakeMap(inputs, {37});
      const auto data = MakePatterns(1, inputs, 0, 0.0, 1.0);
      const auto x = data->Row(0).Inputs;
      TValues prototype(x.size());
      for (std::size_t low = 0; low < 37; ++low) {
        for (std::size_t high = low; high < 37; ++high) {
          for (double& value : map->Prototypes()) value = Random::Uniform(10.0, 11.0);
          const auto twins = map->Prototypes();
          twins[36 * x.size()] = kNaN;
          for (std::size_t i = 0; i < x.size(); ++i) {
            twins[low * x.size() + i] = twins[high * x.size() + i] = x[i] + 0.1;
          }
          EXPECT_EQ(low, map->FindWinner(x, prototype));
          EXPECT_EQ(low, map->RecallCoordinates(data.get())->Row(0).Outputs[0]);
        }
      }
    }
  }
}

TEST(KohonenTest, RecallGivesPrototypesCoordinatesAndTheirError) {
  const auto map = MakeMap(2, {2, 3});
  // The prototype of the unit at (a, b) is (a, 10 b).
  for (std::size_t unit = 0; unit < 6; ++unit) {
    map->Prototypes()[2 * unit] = static_cast<double>(unit / 3);
    map->Prototypes()[2 * unit + 1] = 10.0 * static_cast<double>(unit % 3);
  }
  Data in(2, 2, 1, true);
  LabelList label;
  label.Append("corner", 2.0);
  in.AddRow(TValues{9, 9}, {});
  in.AddRow(TValues{0.75, 19}, TValues{7}, &label);
  in.AddRow(TValues{-1, 4}, {});  // takes the place of the first

  const auto prototypes = map->Recall(&in);
  const auto coordinates = map->RecallCoordinates(&in);
  const TValues expected[][3] = {{{0.75, 19}, {1, 20}, {1, 2}}, {{-1, 4}, {0, 0}, {0, 0}}};
  for (int n = 0; n < 2; ++n) {
    EXPECT_TRUE(std::ranges::equal(expected[n][0], prototypes->Row(n).Inputs));
    EXPECT_TRUE(std::ranges::equal(expected[n][1], prototypes->Row(n).Outputs));
    EXPECT_TRUE(std::ranges::equal(expected[n][0], coordinates->Row(n).Inputs));
    EXPECT_TRUE(std::ranges::equal(expected[n][2], coordinates->Row(n).Outputs));
  }
  EXPECT_EQ(label, *prototypes->Row(0).Labels);
  EXPECT_EQ(label, *coordinates->Row(0).Labels);
  EXPECT_TRUE(coordinates->Row(1).Labels->Empty());

  TErrorRMSObj error(2);
  const double sum = 0.25 * 0.25 + 1.0 + 1.0 + 16.0;
  EXPECT_DOUBLE_EQ(std::sqrt(sum / 4.0), map->RecallError(&in, &error));
  EXPECT_TRUE(std::ranges::equal(TValues{1, 20}, map->RecallOutputOnly(&in)->Row(0).Outputs));
}

TEST(KohonenTest, WhatCannotBeTrainedLeavesTheMapAsItWas) {
  const auto map = MakeMap(2, {4, 4});
  const TValues before = PrototypesOf(*map);
  TKohonenModule trainer(map);
  TValues radii = {2, 2};
  TValues wrong = {2};
  const auto train = [&](const Data& data, std::span<double> with) {
    ::testing::internal::CaptureStdout();
    const std::string failure = WhatOf([&] { trainer.Train(data, 0.5, with, 2, 0.9, 0.9); });
    ::testing::internal::GetCapturedStdout();
    return failure;
  };
  const auto starts_with = [](const std::string& text, const std::string& start) {
    return text.starts_with("Assertion failed: " + start + ", file NeuralNets/TKohonenNetwork");
  };
  const auto fine = MakeSet({{0, 1}});
  EXPECT_TRUE(starts_with(train(*fine, wrong), "dimnum == dimnumber"));
  EXPECT_TRUE(starts_with(train(*MakeSet({{0, 1, 2}}), radii), "Map -> GetNumInputs() == dimnum"));
  for (const double far : {2e15, kNaN, kInfinity}) {
    EXPECT_TRUE(starts_with(train(*MakeSet({{0, 1}, {far, 0}}), radii), "bestsofar >= 0")) << far;
    TValues prototype(2);
    EXPECT_TRUE(starts_with(WhatOf([&] {
                              map->FindWinner(TValues{far, 0}, prototype);
                            }),
                            "bestsofar >= 0"));
  }
  EXPECT_EQ(before, PrototypesOf(*map));
}

TEST(KohonenTest, TheObserverSeesTheErrorAndEndsTraining) {
  const auto map = MakeMap(1, {2});
  map->Prototypes()[0] = 0.0;
  map->Prototypes()[1] = 10.0;
  int calls = 0;
  TKohonenModule(map).Train(*MakeSet({{1}, {7}}), 0.5, {}, 100, 1.0, 1.0, [&](int epoch, double e) {
    EXPECT_EQ(calls++, epoch);
    EXPECT_DOUBLE_EQ(std::sqrt((1.0 + 9.0) / (epoch == 0 ? 2.0 : 8.0)), e);
    return epoch < 1;
  });
  EXPECT_EQ(2, calls);
  EXPECT_EQ((TValues{0.75, 7.75}), PrototypesOf(*map));
}

TEST(KohonenTest, SizesAreBoundedBeforeMemoryIsTaken) {
  const auto failure = [](int inputs, const TSizes& sizes) {
    return WhatOf([&] { TKohonenNetwork(inputs, sizes); });
  };
  const std::string where = " Bad Parameter TKohonenNetwork::TKohonenNetwork";
  EXPECT_EQ("a map of more than 16777216 units" + where, failure(1, {65536, 65536, 65536, 65536}));
  EXPECT_EQ("a map dimension of 0 units is less than 1" + where, failure(1, {3, 0}));
  EXPECT_EQ("a map of 4194304 units with 1000 inputs has no or too many weights" + where,
            failure(1000, {2048, 2048}));
  EXPECT_NE("", failure(0, {2}));
  EXPECT_TRUE(failure(1, {}).starts_with("Assertion failed: dims != 0"));

  auto map = MakeMap(2, {2, 6});
  map->SetDimensions({3, 2, 2});
  EXPECT_EQ(3u, map->Grid().NumDimensions());
  EXPECT_EQ("the map has 12 units, not 10 Bad Parameter TKohonenNetwork::SetDimensions",
            WhatOf([&] { map->SetDimensions({10}); }));
  EXPECT_FALSE(TKohonenNetwork({3}).IsComplete());
  EXPECT_TRUE(map->Clone()->KindName() == "Kohonen" && map->IsComplete());
}

}  // namespace
}  // namespace kiln
