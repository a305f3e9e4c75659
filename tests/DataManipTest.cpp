#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>

#include "DataRings.h"
#include "DataTools/DataManip/TDataManip.h"
#include "DataTools/DataManip/TDataStats.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

TRow Inputs(const Data& data, int n) {
  const auto inputs = data.Row(n).Inputs;
  return {inputs.begin(), inputs.end()};
}

// Which rows of a ring stand in `data`, in order. What belongs to a row must have stayed with it.
TList RowsOf(const Data& data) {
  TList rows;
  for (int n = 0; n < data.DataRows(); ++n) {
    const DataRow row = data.Row(n);
    const double number = row.Inputs[0];
    EXPECT_EQ(number + 0.5, row.Inputs[1]);
    EXPECT_EQ(-number, row.Outputs[0]);
    if (row.Labels) {
      EXPECT_EQ((std::vector<LabelEntry>{{number, "row"}}), row.Labels->Entries());
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
    ASSERT_EQ(ring->DataRows() - 2, lagged->DataRows());
    for (int n = 0; n < lagged->DataRows(); ++n) {
      const double i = 11 - ring->DataRows() + n;
      EXPECT_EQ((TRow{i + 2, i + 2.5, i + 1, i + 1.5, i, i + 0.5}), Inputs(*lagged, n));
      EXPECT_EQ(-(i + 2), lagged->Row(n).Outputs[0]);
      EXPECT_EQ(i + 2, lagged->Row(n).Labels->Entries()[0].Value);
      EXPECT_EQ((TRow{i, i + 0.5, i + 1, i + 1.5, i + 2, i + 2.5}), Inputs(*advanced, n));
      EXPECT_EQ(-i, advanced->Row(n).Outputs[0]);
    }
    EXPECT_EQ(RowsOf(*ring), RowsOf(*TDataManip::TimeStepLag(ring.get(), 1)));
  }
}

TEST(DataManipTest, SelectsRowsAndColumnsOfAWrappedRing) {
  const auto ring = MakeRing(8, 11);
  EXPECT_EQ((TList{4, 5, 6}), RowsOf(*TDataManip::GetFirstRows(3, ring.get())));
  const auto subsets = TDataManip::Divide(ring.get(), TList{3, 4});
  EXPECT_FALSE(subsets.at(0)->HasLabels());
  EXPECT_EQ((TList{7, 8, 9, 10}), RowsOf(*subsets.at(1)));
  const auto swapped = TDataManip::Extract(ring.get(), TList{1, 0});
  EXPECT_EQ((TRow{11.5, 11}), Inputs(*swapped, 7));
  EXPECT_EQ(-11.0, swapped->Row(7).Outputs[0]);
}

TEST(DataManipTest, RefusesWhatTheSourceCannotGive) {
  const auto ring = MakeRing(10, 10);
  const Data* source = ring.get();
  const Data other(1, 1, 1, false);
  const auto refused = [](const char* message, const std::function<void()>& operation) {
    EXPECT_EQ(0U, Failure(operation).find(message)) << message;
  };
  const std::vector<const Data*> sources{source, &other};
  refused("Insufficient rows", [&] { TDataManip::TimeStepLag(source, 11); });
  refused("Invalid number of time steps", [&] { TDataManip::TimeStepLag(source, -1); });
  refused("Invalid data column", [&] { TDataManip::Extract(source, TList{0}, TList{-1}); });
  refused("Invalid Data Size", [&] { TDataManip::GetFirstRows(-1, source); });
  refused("Data source null Null Pointer", [&] { TDataManip::Divide(nullptr, TList{0}); });
  refused("Invalid number of subset rows", [&] { TDataManip::Divide(source, TList{99, 0}); });
  refused("Total subset rows", [&] { TDataManip::Divide(source, TList{1 << 30, 1 << 30, 3}); });
  refused("Data sources differ", [&] { TDataManip::Recombine(sources, TList{1, 0}); });
  refused("Invalid number of bounds", [&] { TDataManip::Normalise(source, {3, 1.0, 0.0}, {}); });
}

TEST(DataManipTest, ShufflingKeepsRowsWhole) {
  EXPECT_EQ(TList{1}, RowsOf(*TDataManip::Shuffle(MakeRing(1, 1).get())));
  const auto ring = MakeRing(100000, 100000);
  TList rows = RowsOf(*TDataManip::Shuffle(ring.get()));
  // One draw of the generator could not carry the first rows into the second half.
  EXPECT_GT(std::count_if(rows.begin() + 50000, rows.end(), [](int n) { return n < 1000; }), 400);
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(RowsOf(*ring), rows);
}

TEST(DataManipTest, ShufflingMakesEveryOrderAsLikelyAsAnyOther) {
  Random::Seed(2024);
  const auto ring = MakeRing(4, 4);
  std::map<TList, int> seen;
  for (int i = 0; i < 24000; ++i) ++seen[RowsOf(*TDataManip::Shuffle(ring.get()))];
  ASSERT_EQ(24U, seen.size());
  double chi_square = 0.0;
  for (const auto& [order, count] : seen) chi_square += (count - 1000) * (count - 1000) / 1000.0;
  EXPECT_LT(chi_square, 49.7);  // 23 degrees of freedom: one seed in a thousand is above
}

TEST(DataManipTest, RecombinesASampleOfEachClass) {
  const auto first = MakeRing(50, 50);
  const auto second = MakeRing(100, 200);  // rows 101 to 200
  const std::vector<const Data*> sources{first.get(), second.get()};
  TList rows = RowsOf(*TDataManip::Recombine(sources, TList{20, 5}));
  const auto of_first = [](int row) { return row <= 50; };
  EXPECT_FALSE(std::is_partitioned(rows.begin(), rows.end(), of_first));
  EXPECT_EQ(20, std::count_if(rows.begin(), rows.end(), of_first));
  std::sort(rows.begin(), rows.end());
  EXPECT_EQ(rows.begin() + 25, std::unique(rows.begin(), rows.end()));
}

TEST(DataManipTest, NormalisesEachSideByItsOwnBounds) {
  const auto ring = MakeRing(4, 7);  // rows 4 to 7
  const TColumnBounds columns(TRow{6.0, 5.5}, TRow{4.5, 5.5});
  const TColumnBounds global(1, -4.0, -8.0);
  const auto both = TDataManip::Normalise(ring.get(), columns, global);
  const auto back = TDataManip::Denormalise(both.get(), {}, global);
  const auto beyond = TDataManip::Denormalise(ring.get(), columns, {});
  for (int n = 0; n < 4; ++n) {
    const double number = n + 4.0;
    EXPECT_EQ((TRow{std::max(0.0, std::min((number - 4.5) / 1.5, 1.0)), 0.0}), Inputs(*back, n));
    EXPECT_EQ((8.0 - number) / 4.0, both->Row(n).Outputs[0]);
    EXPECT_EQ(-number, back->Row(n).Outputs[0]);
    EXPECT_EQ(number, back->Row(n).Labels->Entries()[0].Value);
    EXPECT_EQ((TRow{number * 1.5 + 4.5, 5.5}), Inputs(*beyond, n));
  }
}

TEST(DataStatsTest, FollowsTheDataSet) {
  const auto data = std::make_shared<Data>(4, 1, 1, false);
  TDataStats stats(data);
  for (const double value : {3.0, 9.0, 9.0, -1.0}) data->AddRow(TRow{value}, TRow{-value});
  data->SetInputSelection(TList{0});
  EXPECT_EQ((TRow{9, -1, 5, 1, -9, -5}),
            (TRow{stats.GetMaxInputs(0), stats.GetMinInput(0), stats.GetAverageInput(0),
                  stats.GetMaxOutput(0), stats.GetMinOutput(0), stats.GetAverageOutput(0)}));
  EXPECT_EQ((TList{1, 3, 3, 1}), (TList{stats.GetMaxInputRow(0), stats.GetMinInputRow(0),
                                        stats.GetMaxOutputRow(0), stats.GetMinOutputRow(0)}));
  EXPECT_TRUE(data->GetInputSelection().empty());
  for (const double value : {9.0, 4.0}) data->AddRow(TRow{value}, {});  // now 9, -1, 9, 4
  EXPECT_EQ(2, stats.GetMaxInputRow(0));
  EXPECT_EQ((TRow{5.25}), stats.GetInputAverages());
  data->Clear();
  EXPECT_EQ((TRow{9.0}), stats.GetInputMaxima());
  EXPECT_EQ(0.0, stats.GetMaxInputs(1));  // one past the last column
  EXPECT_EQ(0, stats.GetMinOutputRow(1));
  EXPECT_EQ("Invalid Output Data Column Bad Parameter TDataStats:GetMaxOutput",
            Failure([&] { stats.GetMaxOutput(2); }));
}

}  // namespace
}  // namespace kiln
