#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "DataRings.h"
#include "DataTools/DataManip/TDataManip.h"
#include "DataTools/DataManip/TDataStats.h"
#include "DataTools/DataManip/TDivision.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

TValues Inputs(const Data& data, int n) {
  const auto inputs = data.Row(n).Inputs;
  return {inputs.begin(), inputs.end()};
}

// Which rows of a ring stand in `data`, in order. What belongs to a row must have stayed with it.
TSizes RowsOf(const Data& data) {
  TSizes rows;
  for (int n = 0; n < data.DataRows(); ++n) {
    const DataRow row = data.Row(n);
    const double number = row.Inputs[0];
    EXPECT_EQ(row.Inputs[1], number + 0.5);
    EXPECT_EQ(row.Outputs[0], -number);
    if (row.Labels) {
      EXPECT_EQ(row.Labels->Entries(), (std::vector<LabelEntry>{{number, "row"}}));
    }
    rows.push_back(static_cast<int>(number));
  }
  return rows;
}

TEST(DataManipTest, StacksTimeStepsFromTheOldestRowOn) {
  for (const int rows : {20, 10, 7}) {  // not full, just full, wrapped
    const auto ring = MakeRing(rows, 10);
    const auto lagged = TDataManip::TimeStepLag(ring.get(), 3);
    const auto advanced = TDataManip::TimeStepAdvance(ring.get(), 3);
    ASSERT_EQ(lagged->DataRows(), ring->DataRows() - 2);
    for (int n = 0; n < lagged->DataRows(); ++n) {
      const double i = 11 - ring->DataRows() + n;
      EXPECT_EQ(Inputs(*lagged, n), (TValues{i + 2, i + 2.5, i + 1, i + 1.5, i, i + 0.5}));
      EXPECT_EQ(lagged->Row(n).Outputs[0], -(i + 2));
      EXPECT_EQ(lagged->Row(n).Labels->Entries()[0].Value, i + 2);
      EXPECT_EQ(Inputs(*advanced, n), (TValues{i, i + 0.5, i + 1, i + 1.5, i + 2, i + 2.5}));
      EXPECT_EQ(advanced->Row(n).Outputs[0], -i);
    }
    EXPECT_EQ(RowsOf(*TDataManip::TimeStepLag(ring.get(), 1)), RowsOf(*ring));
  }
}

// Every class has its share of every part, rounded; rows go into parts in order.
TEST(DataManipTest, StratifiesAnyClassesIntoAnyParts) {
  Random::Seed(11);
  for (int round = 0; round < 300; ++round) {
    int rows = 1 + static_cast<int>(Random::Below(200));
    const auto kinds = 1 + Random::Below(round % 2 == 0 ? 5 : 90);
    TSizes classes, sizes;
    std::map<int, int> numbers;
    for (int n = 0; n < rows; ++n) {
      const int kind = static_cast<int>(Random::Below(kinds));
      classes.push_back(numbers.try_emplace(kind, static_cast<int>(numbers.size())).first->second);
    }
    int left = rows;
    for (auto parts = 1 + Random::Below(6); parts > 0; --parts) {
      sizes.push_back(static_cast<int>(Random::Below(static_cast<unsigned>(left) + 1)));
      left -= sizes.back();
    }
    if (round == 0) {  // rounding class by class leaves the third part a row short
      classes = {0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 4, 4};
      numbers = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}};
      sizes = {3, 3, 3, 1, 5};
      rows = 15;
    }
    std::set<int> seen;
    const TParts parts = DivideByClass(classes, sizes);
    for (std::size_t part = 0; part < parts.size(); ++part) {
      ASSERT_EQ(std::ssize(parts[part]), sizes[part]);
      EXPECT_TRUE(std::ranges::is_sorted(parts[part]));
      TSizes counts(numbers.size());
      for (const int n : parts[part]) {
        EXPECT_TRUE(seen.insert(n).second);
        ++counts[static_cast<std::size_t>(classes[static_cast<std::size_t>(n)])];
      }
      for (std::size_t c = 0; c < counts.size(); ++c) {
        const auto members = std::ranges::count(classes, static_cast<int>(c));
        const double share = static_cast<double>(members) * sizes[part] / rows;
        EXPECT_LT(std::abs(counts[c] - share), 1.0);
      }
    }
  }
}

TEST(DataManipTest, SelectsRowsAndColumnsOfAWrappedRing) {
  const auto ring = MakeRing(8, 11);
  EXPECT_EQ(RowsOf(*TDataManip::GetFirstRows(3, ring.get())), (TSizes{4, 5, 6}));
  const auto subsets = TDataManip::Divide(ring.get(), TSizes{3, 4});
  EXPECT_FALSE(subsets.at(0)->HasLabels());
  EXPECT_EQ(RowsOf(*subsets.at(1)), (TSizes{7, 8, 9, 10}));
  const auto swapped = TDataManip::Extract(ring.get(), TSizes{1, 0});
  EXPECT_EQ(Inputs(*swapped, 7), (TValues{11.5, 11}));
  EXPECT_EQ(swapped->Row(7).Outputs[0], -11.0);
}

TEST(DataManipTest, RefusesWhatTheSourceCannotGive) {
  const auto ring = MakeRing(10, 10);
  const Data* source = ring.get();
  const Data other(1, 1, 1, false);
  const auto refused = [](const char* message, const std::function<void()>& operation) {
    EXPECT_EQ(Failure(operation).find(message), 0U) << message;
  };
  const std::vector<const Data*> sources{source, &other};
  refused("Insufficient rows", [&] { TDataManip::TimeStepLag(source, 11); });
  refused("Invalid number of time steps", [&] { TDataManip::TimeStepLag(source, -1); });
  refused("Invalid data column", [&] { TDataManip::Extract(source, TSizes{0}, TSizes{-1}); });
  refused("Invalid Data Size", [&] { TDataManip::GetFirstRows(-1, source); });
  refused("Insufficient rows", [&] { TDataManip::GetFirstRows(11, source); });
  refused("Invalid number of subsets", [&] { TDataManip::Divide(source, {}); });
  refused("Insufficient number of classes", [&] {
    TDataManip::Recombine({&source, 1}, TSizes{1});
  });
  refused("Data source null Null Pointer", [&] { TDataManip::Divide(nullptr, TSizes{0}); });
  refused("Invalid number of subset rows", [&] { TDataManip::Divide(source, TSizes{99, 0}); });
  refused("Total subset rows", [&] { TDataManip::Divide(source, TSizes{1 << 30, 1 << 30, 3}); });
  refused("Data sources differ", [&] { TDataManip::Recombine(sources, TSizes{1, 0}); });
  refused("Invalid number of bounds", [&] { TDataManip::Normalise(source, {3, 1.0, 0.0}, {}); });
}

TEST(DataManipTest, ShufflingKeepsRowsWhole) {
  EXPECT_EQ(RowsOf(*TDataManip::Shuffle(MakeRing(1, 1).get())), TSizes{1});
  const auto ring = MakeRing(100000, 100000);
  TSizes rows = RowsOf(*TDataManip::Shuffle(ring.get()));
  // One draw of the generator could not carry the first rows into the second half.
  EXPECT_GT(std::count_if(rows.begin() + 50000, rows.end(), [](int n) { return n < 1000; }), 400);
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(rows, RowsOf(*ring));
}

TEST(DataManipTest, ShufflingMakesEveryOrderAsLikelyAsAnyOther) {
  Random::Seed(2024);
  const auto ring = MakeRing(4, 4);
  std::map<TSizes, int> seen;
  for (int i = 0; i < 24000; ++i) ++seen[RowsOf(*TDataManip::Shuffle(ring.get()))];
  ASSERT_EQ(seen.size(), 24U);
  double chi_square = 0.0;
  for (const auto& [order, count] : seen) chi_square += (count - 1000) * (count - 1000) / 1000.0;
  EXPECT_LT(chi_square, 49.7);  // 23 degrees of freedom: one seed in a thousand is above
}

TEST(DataManipTest, RecombinesASampleOfEachClass) {
  const auto first = MakeRing(50, 50);
  const auto second = MakeRing(100, 200);  // rows 101 to 200
  const std::vector<const Data*> sources{first.get(), second.get()};
  TSizes rows = RowsOf(*TDataManip::Recombine(sources, TSizes{20, 5}));
  const auto of_first = [](int row) { return row <= 50; };
  EXPECT_FALSE(std::is_partitioned(rows.begin(), rows.end(), of_first));
  EXPECT_EQ(std::count_if(rows.begin(), rows.end(), of_first), 20);
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(std::unique(rows.begin(), rows.end()), rows.begin() + 25);
}

TEST(DataManipTest, NormalisesEachSideByItsOwnBounds) {
  const auto ring = MakeRing(4, 7);  // rows 4 to 7
  const TColumnBounds columns(TValues{6.0, 5.5}, TValues{4.5, 5.5});
  const TColumnBounds global(1, -4.0, -8.0);
  const auto both = TDataManip::Normalise(ring.get(), columns, global);
  const auto back = TDataManip::Denormalise(both.get(), {}, global);
  const auto beyond = TDataManip::Denormalise(ring.get(), columns, {});
  for (int n = 0; n < 4; ++n) {
    const double number = n + 4.0;
    EXPECT_EQ(Inputs(*back, n), (TValues{std::max(0.0, std::min((number - 4.5) / 1.5, 1.0)), 0.0}));
    EXPECT_EQ(both->Row(n).Outputs[0], (8.0 - number) / 4.0);
    EXPECT_EQ(back->Row(n).Outputs[0], -number);
    EXPECT_EQ(back->Row(n).Labels->Entries()[0].Value, number);
    EXPECT_EQ(Inputs(*beyond, n), (TValues{number * 1.5 + 4.5, 5.5}));
  }
}

TEST(DataStatsTest, FollowsTheDataSet) {
  const auto data = std::make_shared<Data>(4, 1, 1, false);
  TDataStats stats(data);
  for (const double value : {3.0, 9.0, 9.0, -1.0}) data->AddRow(TValues{value}, TValues{-value});
  data->SetInputSelection(TSizes{0});
  EXPECT_EQ((TValues{stats.GetMaxInputs(0), stats.GetMinInput(0), stats.GetAverageInput(0),
                     stats.GetMaxOutput(0), stats.GetMinOutput(0), stats.GetAverageOutput(0)}),
            (TValues{9, -1, 5, 1, -9, -5}));
  EXPECT_EQ((TSizes{stats.GetMaxInputRow(0), stats.GetMinInputRow(0), stats.GetMaxOutputRow(0),
                    stats.GetMinOutputRow(0)}),
            (TSizes{1, 3, 3, 1}));
  EXPECT_TRUE(data->GetInputSelection().empty());
  for (const double value : {9.0, 4.0}) data->AddRow(TValues{value}, {});  // now 9, -1, 9, 4
  EXPECT_EQ(stats.GetMaxInputRow(0), 2);
  EXPECT_EQ(stats.GetInputAverages(), (TValues{5.25}));
  data->Clear();
  EXPECT_EQ(stats.GetInputMaxima(), (TValues{9.0}));
  EXPECT_EQ(stats.GetMaxInputs(1), 0.0);  // one past the last column
  EXPECT_EQ(stats.GetMinOutputRow(1), 0);
  EXPECT_EQ(Failure([&] { stats.GetMaxOutput(2); }),
            "Invalid Output Data Column Bad Parameter TDataStats:GetMaxOutput");
}

}  // namespace
}  // namespace kiln
