#include <gtest/gtest.h>

#include <climits>
#include <functional>

#include "DataRings.h"

namespace kiln {
namespace {

TEST(DataTest, ReadsOldestToNewestBeforeAndAfterWrapping) {
  for (const int count : {0, 1, 3, 4, 5, 7, 8, 13}) {
    const auto data = MakeRing(4, count);
    ASSERT_EQ(data->DataRows(), std::min(count, 4));
    for (int n = 0; n < data->DataRows(); ++n) {
      const int before = count - data->DataRows() + n;
      const DataRow row = data->Row(n);
      EXPECT_EQ(row.Position, before % 4);
      EXPECT_EQ(TValues(row.Inputs.begin(), row.Inputs.end()),
                (TValues{before + 1.0, before + 1.5}));
      EXPECT_EQ(row.Labels->Entries()[0].Value, before + 1);
    }
  }
}

TEST(DataTest, ASideLeftOutOverwritesAnOldRowWithNothing) {
  const auto data = MakeRing(2, 2);
  data->AddRow({}, TValues{5});
  EXPECT_EQ((TValues{data->Row(1).Inputs[1], data->Row(1).Outputs[0]}), (TValues{0, 5}));
  EXPECT_TRUE(data->Row(1).Labels->Empty());
  data->AddBlock(TValues{7, 8, 9, 10}, {}, 2);
  EXPECT_EQ((TValues{data->Row(1).Inputs[1], data->Row(1).Outputs[0]}), (TValues{10, 0}));
  data->Clear();
  EXPECT_EQ((TSizes{data->DataRows(), data->First(), data->Last(), data->Cursor()}),
            (TSizes{0, 0, 0, 0}));
  EXPECT_EQ(data->GetInputDatum(1, 1), 0.0);
}

TEST(DataTest, ChangesSingleValuesAndLabelsOfAPosition) {
  const auto data = MakeRing(3, 4);  // rows 4, 2, 3
  const int before = data->ChangeCount();
  data->SetInputDatum(0, 1, 7);
  data->SetOutputDatum(0, 0, 8);
  data->ClearLabels(1);
  EXPECT_EQ(data->ChangeCount(), before + 3);
  EXPECT_EQ(
      (TValues{data->GetInputDatum(0, 0), data->GetInputDatum(0, 1), data->GetOutputDatum(0, 0)}),
      (TValues{4, 7, 8}));
  EXPECT_EQ(
      (TValues{data->GetInputDatum(1, 0), data->GetInputDatum(1, 1), data->GetOutputDatum(1, 0)}),
      (TValues{2, 2.5, -2}));
  EXPECT_TRUE(data->GetLabels(1).Empty());
  EXPECT_FALSE(data->GetLabels(0).Empty());
}

TEST(DataTest, AcceptsPositionsByTheRuleOfTheRingAndNeverOneOutsideIt) {
  const auto fresh = MakeRing(5, 0);
  const auto wrapped = MakeRing(5, 7);
  EXPECT_EQ(wrapped->GetInputDatum(1, 0), 7.0);
  TValues out(10);
  const std::function<void(Data&, int)> operations[] = {
      [](Data& data, int position) { data.SetInputDatum(position, 0, 1); },
      [](Data& data, int position) { data.SetOutputDatum(position, 0, 1); },
      [&](Data& data, int position) { data.GetOutputRow(position, out, TSizes{0}); },
      [](Data& data, int position) { data.SetRow(position, {}, {}); },
      [](Data& data, int position) { data.ClearLabels(position); },
      [](Data& data, int position) { data.AppendLabel(position, "a", 1); }};
  for (const auto& operation : operations) {
    const auto refused = [&](Data& data, int position) {
      return Failure([&] { operation(data, position); }).find("Invalid Data Row") == 0;
    };
    for (const int position : {INT_MIN, -1, 5, INT_MAX})
      EXPECT_TRUE(refused(*fresh, position) && refused(*wrapped, position)) << position;
    EXPECT_TRUE(refused(*wrapped, 3) && !refused(*fresh, 3));
  }
  for (const int column : {INT_MIN, -1, 2, INT_MAX})
    EXPECT_EQ(Failure([&] {
                fresh->GetInputRow(1, out, TSizes{0, column});
              }),
              "Invalid Input Data Column Bad Parameter Data::GetInputRow");
}

TEST(DataTest, CopiesABlockUpToTheNewestRow) {
  TValues inputs(6), outputs(3);
  EXPECT_EQ(MakeRing(10, 3)->GetBlock(inputs, outputs, 0, 99), 3);
  EXPECT_EQ(inputs, (TValues{1, 1.5, 2, 2.5, 3, 3.5}));
  EXPECT_EQ(MakeRing(10, 3)->GetBlock(inputs, outputs, 2, 1), 0);
  EXPECT_EQ(Failure([&] { MakeRing(10, 3)->GetBlock(inputs, outputs, -1, 1); }),
            "Invalid Data Row Bad Parameter Data::GetInputRow");
  EXPECT_EQ(Failure([&] { MakeRing(5, 7)->GetBlock(inputs, outputs, 3, 4); }),
            "Data Block Fault Bad Parameter Data::GetBlock");
}

TEST(DataTest, RefusesSizesThatNothingCanHold) {
  for (const auto& size : {TSizes{-1, 1}, {1, -1}, {INT_MAX, 0}, {1 << 20, 1 << 11}, {0, INT_MAX}})
    EXPECT_EQ(Failure([&] { Data(size[0], size[1], size[1], false); }),
              "Invalid Data Size Bad Parameter Data::Data");
  EXPECT_EQ(Failure([] { Data(1 << 29, 0, 0, true); }),
            "Invalid Data Size Bad Parameter Data::Data");
  Data empty(0, 2, 0, true);
  empty.AddAllRows();
  EXPECT_EQ(empty.DataRows(), 0);
  empty.Step(INT_MAX);
  EXPECT_EQ(Failure([&] {
              empty.AddRow(TValues{1, 2}, {});
            }),
            "Invalid Data Row Bad Parameter Data::SetRow");
}

TEST(DataTest, StepsByTheRuleOfTheRing) {
  const struct {
    int Rows, Count, Start;
    TSizes Steps, Positions;
  } walks[] = {{10, 4, 3, {1, 1, 1, 1, 1}, {0, 1, 2, 3, 0}},
               // Only steps of more than DataRows() are reduced, by the number of positions.
               {10, 4, 1, {11, -1, -2, -100, 1}, {2, 1, -1, -101, -100}},
               {10, 4, INT_MIN, {INT_MIN, 4}, {INT_MIN, INT_MIN + 4}},
               {10, 0, INT_MAX, {INT_MAX}, {INT_MAX - 3}},
               {3, 1, 2, {5, -7}, {0, 0}},
               // Wrapped, the oldest at 2.
               {4, 6, 1, {1, 1, 1, 1, 1, -3, 9}, {2, 3, 0, 1, 2, 3, 0}}};
  for (const auto& walk : walks) {
    const auto data = MakeRing(walk.Rows, walk.Count);
    data->SetCursor(walk.Start);
    for (std::size_t i = 0; i < walk.Steps.size(); ++i) {
      data->Step(walk.Steps[i]);
      EXPECT_EQ(data->Cursor(), walk.Positions[i]) << walk.Count << " rows, step " << i;
    }
  }
}

// The cursor rests on a row while others are appended.
TEST(DataTest, GoesOnWithTheRowBehindItsOwnOrWithTheOldest) {
  for (int count = 1; count <= 12; ++count) {
    for (int rests = 0; rests < count; ++rests) {
      for (int more = 0; more <= 9; ++more) {
        Data data(4, 1, 0, false);
        for (int n = 0; n < count + more; ++n) {
          data.AddRow(TValues{n + 0.0}, {});
          if (n == count - 1) data.SetCursor(rests % 4);
        }
        const int at = count > 4 && rests < count - 4 ? -1 : rests;  // its row, if it was there
        if (at < 0) continue;
        const int oldest = std::max(0, count + more - 4);
        const int next = at < oldest || at == count + more - 1 ? oldest : at + 1;
        TValues value(1);
        data.Next(value, {});
        EXPECT_EQ(next, value[0]) << count << ' ' << rests << ' ' << more;
      }
    }
  }
}

TEST(DataTest, StepsThroughTheSelectedColumns) {
  const auto data = MakeRing(3, 3);
  TValues inputs(2), outputs(1);
  data->SetSelections({}, TSizes{5});  // an output selection alone counts for nothing
  data->ResetCursor();
  data->Next(inputs, outputs);
  EXPECT_EQ((TValues{inputs[0], inputs[1], outputs[0]}), (TValues{1, 1.5, -1}));
  data->SetInputSelection(TSizes{1, 0});
  EXPECT_EQ(Failure([&] { data->Next(inputs, outputs); }),
            "Invalid Output Data Column Bad Parameter Data::Current");
  EXPECT_EQ(inputs, (TValues{2.5, 2}));
  data->SetCursor(0);
  EXPECT_EQ(Failure([&] { data->Previous(inputs, outputs); }),
            "Invalid Data Row Bad Parameter Data::GetInputRow");
}

TEST(DataTest, ClonesEveryPositionAndStandsApart) {
  const auto data = MakeRing(4, 6);
  data->SetInputSelection(TSizes{1});
  const auto clone = data->Clone();
  for (const char* name : {"Row", "row"}) data->AppendLabel(1, name, 1.5);
  EXPECT_EQ(data->GetLabels(1).Entries(), (std::vector<LabelEntry>{{7.5, "row"}, {1.5, "Row"}}));
  EXPECT_EQ(data->ChangeCount(), clone->ChangeCount() + 2);
  EXPECT_EQ(clone->GetInputSelection(), TSizes{1});
  for (int n = 0; n < 4; ++n)
    EXPECT_EQ(clone->Row(n).Labels->Entries()[0].Value, clone->Row(n).Inputs[0]);
}

}  // namespace
}  // namespace kiln
