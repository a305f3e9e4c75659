#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "Networks.h"
#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "NeuralNets/Maps/TNearestSearch.h"
#include "NeuralNets/Maps/TNeighbourhood.h"
#include "NeuralNets/TErrorObj.h"
#include "Shared/TTeam.h"

namespace kiln {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr TKernelLevel kLevels[] = {TKernelLevel::kBaseline, TKernelLevel::kAvx2,
                                    TKernelLevel::kAvx512};

std::shared_ptr<TKohonenNetwork> MakeMap(int inputs, const TSizes& sizes) {
  auto map = std::make_shared<TKohonenNetwork>(inputs, sizes);
  map->Randomize(0.0, 1.0);
  return map;
}

// The prototypes, unit by unit.
std::vector<TValues> PrototypesOf(const TKohonenNetwork& map) {
  std::vector<TValues> rows;
  for (std::size_t unit = 0; unit < map.Grid().NumUnits(); ++unit) {
    rows.emplace_back(map.Prototype(unit).begin(), map.Prototype(unit).end());
  }
  return rows;
}

Data& Append(Data& data, const std::vector<TValues>& rows) {
  for (const TValues& row : rows) data.AddRow(row, {});
  return data;
}

// The rules of a map, unit by unit and value by value.
struct TSlowMap {
  int Winner(std::span<const double> x) const {
    double best = 1e30;
    int winner = -1;
    for (std::size_t j = 0; j < w.size(); ++j) {
      double d = 0.0;
      for (std::size_t i = 0; i < x.size(); ++i) d += (x[i] - w[j][i]) * (x[i] - w[j][i]);
      if (d < best) {
        best = d;
        winner = static_cast<int>(j);
      }
    }
    return winner;
  }

  void Learn(std::span<const double> x, double rate, const TSizes& r) {
    const int winner = Winner(x);
    for (std::size_t j = 0; j < w.size(); ++j) {
      if (!Moves(static_cast<int>(j), winner, r)) continue;
      for (std::size_t i = 0; i < x.size(); ++i) w[j][i] += rate * (x[i] - w[j][i]);
    }
  }

  bool Moves(int unit, int winner, const TSizes& r) const {
    if (r.empty()) return unit == winner;
    for (std::size_t k = size.size(); k-- > 0; unit /= size[k], winner /= size[k]) {
      if (std::abs(unit % size[k] - winner % size[k]) > r[k]) return false;
    }
    return true;
  }

  TSizes size;
  std::vector<TValues> w;
};

TEST(KohonenTest, TrainingFollowsItsRulesOnEveryGridAndProcessor) {
  constexpr int kEpochs = 6;
  const struct {
    int inputs;
    TSizes sizes;
    TValues radii;
  } kCases[] = {
      {3, {13}, {4.5}},          {3, {13}, {}},        {4, {7, 9}, {3.0, 5.7}},
      {4, {7, 9}, {}},           {1, {8, 1}, {0, 99}}, {17, {5, 16}, {1, 1}},
      {5, {3, 4, 5}, {2, 0, 9}}, {5, {3, 4, 5}, {}},   {2, {2, 3, 11}, {500, 3, 4}},
  };
  for (const TKernelLevel level : kLevels) {
    if (!ForceKernels(level)) continue;
    for (const auto& c : kCases) {
      const auto map = MakeMap(c.inputs, c.sizes);
      TSlowMap slow{c.sizes, PrototypesOf(*map)};
      const auto data = MakePatterns(40, c.inputs, 0, 0.0, 1.0);
      TValues radii = c.radii;
      testing::internal::CaptureStdout();
      TKohonenModule(map).Train(*data, 0.7, radii, kEpochs, 0.85, 0.6);
      EXPECT_EQ(c.radii.empty() ? "" : "0 1 2 3 4 5 ", testing::internal::GetCapturedStdout());

      TValues slow_radii = c.radii;
      double rate = 0.7;
      for (int epoch = 0; epoch < kEpochs; ++epoch) {
        for (double& radius : slow_radii) radius = (radius - 1.0) * 0.6 + 1.0;
        rate *= 0.85;
        const TSizes r(slow_radii.begin(), slow_radii.end());
        for (int n = 0; n < data->DataRows(); ++n) slow.Learn(data->Row(n).Inputs, rate, r);
      }
      EXPECT_EQ(slow_radii, radii);
      EXPECT_EQ(slow.w, PrototypesOf(*map));  // to the last digit
    }
  }
}

TEST(KohonenTest, ByBatchUnitsGoToTheMeansOfTheirNeighbourhoods) {
  const struct {
    int inputs;
    TSizes sizes;
    TValues radii;
  } kCases[] = {{2, {700}, {90}},          {3, {21, 19}, {5, 3}}, {1, {30}, {2}},
                {4, {3, 8, 5}, {9, 1, 2}}, {2, {6, 7}, {-5, 3}},  {300, {4, 3}, {}}};
  for (const auto& c : kCases) {
    const auto start = MakeMap(c.inputs, c.sizes);
    const auto data = MakePatterns(150, c.inputs, 0, 0.0, 1.0);
    TSlowMap slow{c.sizes, PrototypesOf(*start)};
    std::vector<TValues> expected = slow.w;
    for (std::size_t j = 0; j < slow.w.size(); ++j) {
      TValues sum(static_cast<std::size_t>(c.inputs));
      int rows = 0;
      for (int n = 0; n < data->DataRows(); ++n) {
        const auto x = data->Row(n).Inputs;
        const TSizes r(c.radii.begin(), c.radii.end());
        if (!slow.Moves(static_cast<int>(j), slow.Winner(x), r)) continue;
        for (std::size_t i = 0; i < x.size(); ++i) sum[i] += x[i];
        ++rows;
      }
      for (std::size_t i = 0; rows > 0 && i < sum.size(); ++i) {
        expected[j][i] += 0.7 * (sum[i] / rows - expected[j][i]);
      }
    }
    std::vector<TValues> first;
    for (const std::size_t workers : {1U, 2U, 3U, 7U}) {
      TTeam::SetWorkers(workers);
      const auto map = std::make_shared<TKohonenNetwork>(*start);
      TValues radii = c.radii;
      testing::internal::CaptureStdout();
      TKohonenModule(map).TrainByBatch(*data, 0.7, radii, 1, 1.0, 1.0);
      testing::internal::GetCapturedStdout();
      const auto trained = PrototypesOf(*map);
      for (std::size_t j = 0; j < trained.size(); ++j) {
        for (std::size_t i = 0; i < trained[j].size(); ++i) {
          ASSERT_NEAR(expected[j][i], trained[j][i], 1e-14) << j << ' ' << c.sizes[0];
        }
      }
      if (workers == 1) first = trained;
      EXPECT_EQ(first, trained) << workers;
    }
    TTeam::SetWorkers(1);
  }
}

TSizes Reached(const TMapGrid& grid, std::size_t winner, const TValues& radii) {
  TNeighbourhood neighbourhood(grid);
  neighbourhood.SetRadii(radii);
  TSizes units;
  neighbourhood.ForEachRow(winner, [&](std::size_t first, std::size_t last) {
    for (; first < last; ++first) units.push_back(static_cast<int>(first));
  });
  return units;
}

TEST(KohonenTest, NeighbourhoodsEndWithTheGrid) {
  const TMapGrid grid({5, 5});
  EXPECT_EQ(Reached(grid, 0, {2, 2}), (TSizes{0, 1, 2, 5, 6, 7, 10, 11, 12}));
  EXPECT_EQ(Reached(grid, 12, {0.9, -0.9}), (TSizes{12}));
  EXPECT_EQ(Reached(grid, 12, {kInfinity, 1e10}).size(), 25u);
  for (const double none : {-1.0, -1e300, -kInfinity, kNaN}) {
    EXPECT_TRUE(Reached(grid, 12, {5, none}).empty()) << none;
  }
}

TEST(KohonenTest, TheLowerOfEqualUnitsWinsWhereverTheyStand) {
  for (const TKernelLevel level : kLevels) {
    if (!ForceKernels(level)) continue;
    const auto map = MakeMap(3, {37});
    const std::span<double> w = map->Prototypes();
    const auto data = MakePatterns(1, 3, 0, 5.0, 6.0);
    const auto x = data->Row(0).Inputs;
    for (std::size_t high = 0; high < 37; ++high) {
      for (std::size_t low = 0; low <= high; ++low) {
        map->Randomize(0.0, 1.0);
        w[36 * 3] = kNaN;
        for (std::size_t i = 0; i < 3; ++i) w[low * 3 + i] = w[high * 3 + i] = x[i] + 0.1;
        EXPECT_EQ(low, map->RecallCoordinates(data.get())->Row(0).Outputs[0]);
      }
    }
  }
}

using TNearPair = std::array<std::pair<double, std::size_t>, 2>;

// The two nearest units and their distances, by the formula.
TNearPair TwoNearest(const TValues& w, std::span<const double> x) {
  TNearPair nearest = {{{kInfinity, 0}, {kInfinity, 0}}};
  for (std::size_t at = 0; at < w.size(); at += x.size()) {
    double d = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) d += (x[i] - w[at + i]) * (x[i] - w[at + i]);
    if (d < nearest[1].first) nearest[1] = {d, at / x.size()};
    if (d < nearest[0].first) std::swap(nearest[0], nearest[1]);
  }
  return nearest;
}

TEST(KohonenTest, ManyRowsFindTheirNearestUnitsWhateverTheRounding) {
  constexpr std::size_t kUnits = 17 * 19;
  constexpr int kRows = 70;
  // Values are around a centre, in so many steps, or any where 0.
  const struct {
    double centre, width;
    int steps;
  } kCases[] = {{0.5, 0.5, 0},       {0, 1, 2},         {1, 0, 1},         {1, 1e-15, 9},
                {1e3, 1e-9, 0},      {1e9, 1e-3, 0},    {1e9, 1e-5, 0},    {-1e14, 1, 0},
                {1e145, 1e145, 3},   {1e152, 1e136, 0}, {1e200, 1e184, 9}, {0, 1e-7, 0},
                {1e-150, 1e-153, 0}, {0, 1e-160, 0},    {0, 1e-162, 4},    {0, 1e-310, 0}};
  for (const auto& c : kCases) {
    for (const int inputs : {1, 3, 40}) {
      const auto draw = [&] {
        const double share = Random::Uniform(-1.0, 1.0);
        return c.centre + c.width * (c.steps > 0 ? std::round(share * c.steps) / c.steps : share);
      };
      TValues w(kUnits * static_cast<std::size_t>(inputs));
      std::ranges::generate(w, draw);
      w[w.size() / 3] = inputs == 3 ? kNaN : inputs == 1 ? kInfinity : draw();
      Data data(kRows, inputs, 0, false);
      for (int n = 0; n < kRows; ++n) {
        TValues x(w.begin() + n * inputs, w.begin() + (n + 1) * inputs);  // that of a unit
        if (n % 2 == 1 && c.width < 1e14) std::ranges::generate(x, draw);
        data.AddRow(x, {});
      }
      std::vector<TNearPair> expected;
      for (int n = 0; n < kRows; ++n) expected.push_back(TwoNearest(w, data.Row(n).Inputs));
      const TPrototypeTiles tiles(w, static_cast<std::size_t>(inputs));
      for (const TKernelLevel level : kLevels) {
        if (!ForceKernels(level)) continue;
        const TNearestSearch search(tiles);
        std::vector<TNearPair> pairs;
        search.ForEachRow<TNearestUnits>(data, [&](const DataRow&, const TNearestUnits& found) {
          const auto [first, second] = found;
          pairs.push_back({{{first.distance, first.unit}, {second.distance, second.unit}}});
        });
        EXPECT_EQ(expected, pairs) << c.centre << ' ' << c.width << ' ' << inputs;
        std::size_t n = 0;
        search.ForEachRow<TWinner>(data, [&](const DataRow&, const TWinner& winner) {
          EXPECT_EQ(expected[n++][0], std::pair(winner.distance, winner.unit)) << c.centre;
        });
      }
    }
  }
}

TEST(KohonenTest, RecallGivesPrototypesCoordinatesAndTheirError) {
  const auto map = MakeMap(2, {2, 3});
  const TValues prototypes = {0, 0, 0, 10, 0, 20, 1, 0, 1, 10, 1, 20};
  std::ranges::copy(prototypes, map->Prototypes().begin());
  Data in(2, 2, 1, false);
  Append(in, {{9, 9}, {0.75, 19}, {-1, 4}});  // the last takes the place of the first

  const TValues rows[][3] = {{{0.75, 19}, {1, 20}, {1, 2}}, {{-1, 4}, {0, 0}, {0, 0}}};
  for (int n = 0; n < 2; ++n) {
    EXPECT_TRUE(std::ranges::equal(rows[n][0], map->Recall(&in)->Row(n).Inputs));
    EXPECT_TRUE(std::ranges::equal(rows[n][1], map->Recall(&in)->Row(n).Outputs));
    EXPECT_TRUE(std::ranges::equal(rows[n][1], map->RecallOutputOnly(&in)->Row(n).Outputs));
    EXPECT_TRUE(std::ranges::equal(rows[n][2], map->RecallCoordinates(&in)->Row(n).Outputs));
  }
  TErrorRMSObj error(2);
  EXPECT_DOUBLE_EQ(std::sqrt((0.0625 + 1.0 + 1.0 + 16.0) / 4.0), map->RecallError(&in, &error));

  const Data wide(1, 3, 0, false);
  const auto expect = [](const std::string& operation, const auto& recall) {
    EXPECT_TRUE(Failure(recall).ends_with(" TKohonenNetwork::" + operation)) << Failure(recall);
  };
  expect("Recall", [&] { map->Recall(&wide); });
  expect("RecallOutputOnly", [&] { map->RecallOutputOnly(&wide); });
  expect("RecallCoordinates", [&] { map->RecallCoordinates(&wide); });
  expect("RecallError", [&] { map->RecallError(&wide, &error); });
}

TEST(KohonenTest, WhatCannotBeTrainedLeavesTheMapAsItWas) {
  const auto map = MakeMap(2, {4, 4});
  const auto before = PrototypesOf(*map);
  const auto expect = [&](const std::string& start, const Data& data, TValues radii) {
    testing::internal::CaptureStdout();
    const std::string failure =
        Failure([&] { TKohonenModule(map).Train(data, 0.5, radii, 2, 0.9, 0.9); });
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(failure.starts_with("Assertion failed: " + start + ", file NeuralNets/TKohonenNet"))
        << failure;
  };
  Data wide(1, 3, 0, false), fine(1, 2, 0, false);
  expect("Map -> GetNumInputs() == dimnum", Append(wide, {{0, 1, 2}}), {2, 2});
  expect("dimnum == dimnumber", Append(fine, {{0, 1}}), {2});
  for (const double far : {2e15, kNaN, kInfinity}) {
    Data data(2, 2, 0, false);
    expect("bestsofar >= 0", Append(data, {{0, 1}, {far, 0}}), {2, 2});
  }
  EXPECT_EQ(before, PrototypesOf(*map));
}

TEST(KohonenTest, TheObserverSeesTheErrorAndEndsTraining) {
  const auto map = MakeMap(1, {2});
  map->Prototypes()[0] = 0.0;
  map->Prototypes()[1] = 10.0;
  Data data(2, 1, 0, false);
  int calls = 0;
  TKohonenModule(map).Train(Append(data, {{1}, {7}}), 0.5, {}, 100, 1.0, 1.0,
                            [&](int epoch, double error) {
                              EXPECT_EQ(calls++, epoch);
                              EXPECT_DOUBLE_EQ(std::sqrt(epoch == 0 ? 5.0 : 1.25), error);
                              return epoch < 1;
                            });
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(PrototypesOf(*map), (std::vector<TValues>{{0.75}, {7.75}}));
}

TEST(KohonenTest, SizesAreBoundedBeforeMemoryIsTaken) {
  const auto failure = [](int inputs, const TSizes& sizes) {
    return Failure([&] { TKohonenNetwork(inputs, sizes); });
  };
  EXPECT_EQ(failure(1, {65536, 65536, 65536, 65536}),
            "a map of more than 16777216 units Bad Parameter TKohonenNetwork::TKohonenNetwork");
  EXPECT_TRUE(failure(1, {3, 0}).starts_with("a map dimension of 0 units"));
  EXPECT_TRUE(failure(0, {2}).starts_with("a map of 2 units can have 1 to 536870912 inputs"));
  EXPECT_TRUE(failure(257, {2048, 2048}).starts_with("a map of 4194304 units can have 1 to 256"));
  EXPECT_TRUE(failure(1, {}).starts_with("Assertion failed: dims != 0"));

  const auto map = MakeMap(2, {2, 6});
  map->SetDimensions({3, 2, 2});
  EXPECT_EQ(map->Grid().NumDimensions(), 3u);
  EXPECT_EQ(Failure([&] { map->SetDimensions({10}); }),
            "the map has 12 units, not 10 Bad Parameter TKohonenNetwork::SetDimensions");
}

}  // namespace
}  // namespace kiln
