#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "DataObject/Data.h"
#include "Shared/TException.h"

namespace kiln {
namespace {

using TRow = std::vector<double>;

// A ring of `rows` positions to which the rows (n, 10n) -> -n, n = 1..count, were added, each with
// the label "row" of weight n.
std::unique_ptr<Data> MakeRing(int rows, int count) {
  auto data = std::make_unique<Data>(rows, 2, 1, true);
  for (double n = 1; n <= count; ++n) {
    LabelList labels;
    labels.Append("row", n);
    data->AddRow(TRow{n, 10 * n}, TRow{-n}, &labels);
  }
  return data;
}

std::string FailureOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const TException& failure) {
    return failure.what();
  }
  return "";
}

TEST(DataTest, ReadsOldestToNewestBeforeAndAfterWrapping) {
  for (const int count : {0, 1, 3, 4, 5, 7, 8, 13}) {
    const auto data = MakeRing(4, count);
    ASSERT_EQ(std::min(count, 4), data->DataRows());
    for (int n = 0; n < data->DataRows(); ++n) {
      const double expected = count - data->DataRows() + n + 1;
      const DataRow row = data->Row(n);
      EXPECT_EQ((count - data->DataRows() + n) % 4, row.Position);
      EXPECT_EQ(expected, row.Inputs[0]);
      EXPECT_EQ(10 * expected, row.Inputs[1]);
      EXPECT_EQ(-expected, row.Outputs[0]);
      EXPECT_EQ(expected, row.Labels->Entries()[0].Value);
    }
  }
}

TEST(DataTest, ASideLeftOutOverwritesAnOldRowWithNothing) {
  const auto data = MakeRing(2, 2);
  data->AddRow({}, TRow{5});
  EXPECT_EQ(0.0, data->Row(1).Inputs[1]);
  EXPECT_EQ(5.0, data->Row(1).Outputs[0]);
  EXPECT_TRUE(data->Row(1).Labels->Empty());
  data->AddBlock(TRow{7, 8, 9, 10}, {}, 2);
  EXPECT_EQ(7.0, data->Row(0).Inputs[0]);
  EXPECT_EQ(10.0, data->Row(1).Inputs[1]);
  EXPECT_EQ(0.0, data->Row(1).Outputs[0]);
  data->Clear();
  EXPECT_EQ(0, data->DataRows() + data->First() + data->Last() + data->Cursor());
  EXPECT_EQ(0.0, data->GetInputDatum(1, 1));
  EXPECT_TRUE(data->GetLabels(0).Empty());
}

TEST(DataTest, AcceptsPositionsByTheRuleOfTheRingAndNeverOneOutsideIt) {
  const auto fresh = MakeRing(5, 0);
  const auto wrapped = MakeRing(5, 7);
  EXPECT_EQ(0.0, fresh->GetInputDatum(3, 0));
  EXPECT_EQ(7.0, wrapped->GetInputDatum(1, 0));
  EXPECT_EQ(3.0, wrapped->GetInputDatum(2, 0));
  TRow out(10);
  const struct {
    std::string Name;
    std::function<void(Data&, int)> Run;
  } operations[] = {{"GetInputDatum", [](Data& data, int row) { data.GetInputDatum(row, 0); }},
                    {"GetOutputDatum", [](Data& data, int row) { data.GetOutputDatum(row, 0); }},
                    {"SetInputDatum", [](Data& data, int row) { data.SetInputDatum(row, 0, 1); }},
                    {"SetOutputDatum", [](Data& data, int row) { data.SetOutputDatum(row, 0, 1); }},
                    {"GetInputRow", [&](Data& data, int row) { data.GetInputRow(row, out); }},
                    {"GetOutputRow", [&](Data& data, int row) { data.GetOutputRow(row, out); }},
                    {"SetRow",
                     [](Data& data, int row) {
                       data.SetRow(row, TRow{1, 2}, TRow{3});
                     }},
                    {"GetLabels", [](Data& data, int row) { data.GetLabels(row); }},
                    {"SetLabels", [](Data& data, int row) { data.SetLabels(row, nullptr); }},
                    {"ClearLabels", [](Data& data, int row) { data.ClearLabels(row); }},
                    {"AppendLabel", [](Data& data, int row) { data.AppendLabel(row, "a", 1); }}};
  for (const auto& operation : operations) {
    const std::string expected = "Invalid Data Row Bad Parameter Data::" + operation.Name;
    for (const int row : {INT_MIN, -1, 5, INT_MAX}) {
      EXPECT_EQ(expected, FailureOf([&] { operation.Run(*fresh, row); }));
      EXPECT_EQ(expected, FailureOf([&] { operation.Run(*wrapped, row); }));
    }
    EXPECT_EQ(expected, FailureOf([&] { operation.Run(*wrapped, 3); }));
    EXPECT_EQ("", FailureOf([&] { operation.Run(*fresh, 3); }));
  }
  for (const int column : {INT_MIN, -1, 2, INT_MAX}) {
    EXPECT_EQ("Invalid Input Data Column Bad Parameter Data::GetInputDatum",
              FailureOf([&] { fresh->GetInputDatum(1, column); }));
    EXPECT_EQ("Invalid Input Data Column Bad Parameter Data::GetInputRow", FailureOf([&] {
                fresh->GetInputRow(1, out, std::vector<int>{0, column});
              }));
  }
}

TEST(DataTest, CopiesABlockUpToTheNewestRow) {
  const auto data = MakeRing(10, 4);
  TRow inputs(8), outputs(4);
  EXPECT_EQ(4, data->GetBlock(inputs, outputs, 0, 99));
  EXPECT_EQ((TRow{1, 10, 2, 20, 3, 30, 4, 40}), inputs);
  EXPECT_EQ((TRow{-1, -2, -3, -4}), outputs);
  EXPECT_EQ(0, data->GetBlock(inputs, outputs, 50, 99));
  EXPECT_EQ("Invalid Data Row Bad Parameter Data::GetInputRow",
            FailureOf([&] { data->GetBlock(inputs, outputs, INT_MIN, 4); }));
  EXPECT_EQ("Data Block Fault Bad Parameter Data::GetBlock",
            FailureOf([&] { MakeRing(5, 7)->GetBlock(inputs, outputs, 3, 4); }));
}

TEST(DataTest, RefusesSizesThatNothingCanHold) {
  for (const auto& [rows, inputs] : {std::pair{-1, 1},
                                     {1, -1},
                                     {INT_MAX, 0},
                                     {INT_MAX, INT_MAX},
                                     {1 << 20, 1 << 11},
                                     {0, INT_MAX}})
    EXPECT_EQ("Invalid Data Size Bad Parameter Data::Data",
              FailureOf([r = rows, i = inputs] { Data(r, i, i, false); }));
  Data empty(0, 2, 0, true);
  EXPECT_EQ("Invalid Data Row Bad Parameter Data::SetRow", FailureOf([&] {
              empty.AddRow(TRow{1, 2}, {});
            }));
  empty.Step(INT_MAX);
  EXPECT_EQ(0, empty.DataRows());
}

TEST(DataTest, SumsLabelsOfOneNameWithRegardToCase) {
  Data data(1, 0, 0, true);
  for (const char* name : {"up", "Up", "up"}) data.AppendLabel(0, name, 0.5);
  EXPECT_EQ((std::vector<LabelEntry>{{1.0, "up"}, {0.5, "Up"}}), data.GetLabels(0).Entries());
}

TEST(DataTest, StepsByTheRuleOfTheRing) {
  const struct {
    int Rows, Count, Start;
    std::vector<int> Steps, Positions;
  } walks[] = {{10, 4, 3, {1, 1, 1, 1, 1}, {0, 1, 2, 3, 0}},
               // Only steps of more than DataRows() are reduced, by the number of positions.
               {10, 4, 1, {11, -1, -2, -100, 1}, {2, 1, -1, -101, -100}},
               {10, 4, INT_MIN, {INT_MIN, 4}, {INT_MIN, INT_MIN + 4}},
               {10, 0, INT_MAX, {INT_MAX}, {INT_MAX - 3}},
               {3, 1, 2, {5, -7}, {0, 0}},
               // Wrapped: positions behind the newest row are moved on by First() - Last().
               {4, 6, 1, {1, 1, 1, 1, 1, -1}, {3, 0, 1, 3, 0, -1}}};
  for (const auto& walk : walks) {
    const auto data = MakeRing(walk.Rows, walk.Count);
    data->SetCursor(walk.Start);
    for (std::size_t i = 0; i < walk.Steps.size(); ++i) {
      data->Step(walk.Steps[i]);
      EXPECT_EQ(walk.Positions[i], data->Cursor()) << walk.Count << " rows, step " << i;
    }
  }
}

TEST(DataTest, StepsThroughTheSelectedColumns) {
  const auto data = MakeRing(3, 3);
  TRow inputs(2), outputs{99};
  LabelList labels;
  data->SetSelections({}, std::vector<int>{5});  // an output selection alone counts for nothing
  data->ResetCursor();
  data->Next(inputs, outputs, &labels);
  EXPECT_EQ((TRow{1, 10, -1}), (TRow{inputs[0], inputs[1], outputs[0]}));
  EXPECT_EQ(1.0, labels.Entries()[0].Value);
  data->SetSelections(std::vector<int>{1, 0}, {});
  data->Next(inputs, outputs);
  EXPECT_EQ((TRow{20, 2, -2}), (TRow{inputs[0], inputs[1], outputs[0]}));
  data->SetSelections(std::vector<int>{1}, std::vector<int>{1});
  EXPECT_EQ("Invalid Output Data Column Bad Parameter Data::Current",
            FailureOf([&] { data->Next(inputs, outputs); }));
  data->SetCursor(0);
  EXPECT_EQ("Invalid Data Row Bad Parameter Data::GetInputRow",
            FailureOf([&] { data->Previous(inputs, outputs); }));
}

TEST(DataTest, ClonesEveryPositionAndStandsApart) {
  const auto data = MakeRing(4, 6);
  data->SetSelections(std::vector<int>{1}, std::vector<int>{0});
  data->SetCursor(2);
  const auto clone = data->Clone();
  const int changes = data->ChangeCount();
  data->AddRow(TRow{9, 9}, TRow{9});
  EXPECT_NE(changes, data->ChangeCount());
  EXPECT_EQ(changes, clone->ChangeCount());
  EXPECT_EQ(2, clone->Cursor());
  EXPECT_EQ(std::vector<int>{1}, clone->GetInputSelection());
  for (int n = 0; n < 4; ++n) {
    EXPECT_EQ(n + 3.0, clone->Row(n).Inputs[0]);
    EXPECT_EQ(n + 3.0, clone->Row(n).Labels->Entries()[0].Value);
  }
}

}  // namespace
}  // namespace kiln
