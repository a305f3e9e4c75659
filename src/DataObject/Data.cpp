#include "DataObject/Data.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Shared/Narrowing.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Room that a label list takes even while it is empty.
constexpr std::int64_t kListNumbers = sizeof(LabelList) / sizeof(double);

// The number of rows of a set, passed on when such a set can be.
int CheckedRows(std::int64_t rows, std::int64_t inputs, std::int64_t outputs, bool has_labels) {
  const auto fits = [](std::int64_t n) { return n >= 0 && n <= Data::kMaxNumbers; };
  const std::int64_t lists = has_labels ? kListNumbers : 0;
  // At least one row is counted, so that columns alone are bounded too.
  if (!fits(rows) || !fits(inputs) || !fits(outputs) ||
      !fits(std::max<std::int64_t>(rows, 1) * (inputs + outputs + lists)))
    throw TException("Invalid Data Size", "Bad Parameter", "Data::Data");
  return static_cast<int>(rows);
}

// The part of a block of rows that stands in row `index`; nothing of a side that was left out.
template <typename T>
std::span<T> RowOfBlock(std::span<T> block, int index, int columns) {
  if (block.empty()) return {};
  const auto width = static_cast<std::size_t>(columns);
  const auto begin = static_cast<std::size_t>(index) * width;
  Assert(begin + width <= block.size(), "begin + width <= block.size()");
  return block.subspan(begin, width);
}

}  // namespace

Data::Data(std::int64_t rows, std::int64_t inputs, std::int64_t outputs, bool has_labels)
    : MbrNdxRows(CheckedRows(rows, inputs, outputs, has_labels)),
      MbrBolHasLabels(has_labels),
      MbrSidInputs(MbrNdxRows, static_cast<int>(inputs), "Invalid Input Data Column"),
      MbrSidOutputs(MbrNdxRows, static_cast<int>(outputs), "Invalid Output Data Column"),
      MbrDyaLabels(has_labels ? static_cast<std::size_t>(rows) : 0) {}

void Data::CheckPosition(int position, const char* function) const {
  if (!IsValidRow(position) || !InRing(position))
    throw TException("Invalid Data Row", "Bad Parameter", function);
}

void Data::CountChange() {
  MbrNdxChangeCount = static_cast<int>(static_cast<unsigned>(MbrNdxChangeCount) + 1U);
}

void Data::SetNames(ColumnNames names) {
  const auto fit = [](const std::vector<std::string>& side, int columns) {
    return side.empty() || std::ssize(side) == columns;
  };
  Assert(fit(names.Inputs, Inputs()) && fit(names.Outputs, Outputs()), "a name for each column");
  MbrTxtNames = std::move(names);
}

std::unique_ptr<Data> Data::MakeAlike(std::int64_t rows) const {
  auto alike = std::make_unique<Data>(rows, Inputs(), Outputs(), MbrBolHasLabels);
  alike->MbrTxtNames = MbrTxtNames;
  return alike;
}

// --- Filling ---------------------------------------------------------------------------------

void Data::AddRow(std::span<const double> inputs, std::span<const double> outputs,
                  const LabelList* labels) {
  Assert(MbrNdxDataRows <= MbrNdxRows, "MbrNdxDataRows <= MbrNdxRows");
  const bool full = MbrNdxDataRows == MbrNdxRows;
  const int position = full ? Following(MbrNdxLast) : MbrNdxDataRows;
  // A cursor whose row goes stays before the oldest row, however many rows follow.
  if (full && position == MbrNdxCursor) MbrBolCursorLost = true;
  if (MbrBolCursorLost) MbrNdxCursor = position;
  SetRow(position, inputs, outputs, labels);
  if (inputs.empty()) MbrSidInputs.Clear(position);
  if (outputs.empty()) MbrSidOutputs.Clear(position);
  if (full)
    MbrNdxFirst = Following(MbrNdxFirst);
  else
    ++MbrNdxDataRows;
  MbrNdxLast = position;
  CountChange();
}

void Data::AddAllRows() {
  if (MbrNdxRows == 0) return;
  MbrNdxDataRows = MbrNdxRows;
  MbrNdxLast = MbrNdxRows - 1;
  CountChange();
}

void Data::AddBlock(std::span<const double> inputs, std::span<const double> outputs, int count,
                    std::span<const LabelList> labels) {
  for (int i = 0; i < count; ++i) {
    const auto list = RowOfBlock(labels, i, 1);
    AddRow(RowOfBlock(inputs, i, Inputs()), RowOfBlock(outputs, i, Outputs()),
           list.empty() ? nullptr : list.data());
  }
}

void Data::AddRows(const Data& source, int first, int count) {
  for (int n = first; n < first + count; ++n) {
    const DataRow row = source.Row(n);
    AddRow(row.Inputs, row.Outputs, row.Labels);
  }
}

void Data::SetRow(int position, std::span<const double> inputs, std::span<const double> outputs,
                  const LabelList* labels) {
  CheckPosition(position, "Data::SetRow");
  MbrSidInputs.Assign(position, inputs);
  MbrSidOutputs.Assign(position, outputs);
  if (MbrBolHasLabels) SetLabels(position, labels);
  CountChange();
}

void Data::Clear() {
  MbrSidInputs.Clear();
  MbrSidOutputs.Clear();
  for (LabelList& labels : MbrDyaLabels) labels.Clear();
  MbrNdxDataRows = MbrNdxFirst = MbrNdxLast = 0;
  SetCursor(0);
  CountChange();
}

// --- Single values ---------------------------------------------------------------------------

double Data::GetInputDatum(int position, int column) const {
  CheckPosition(position, "Data::GetInputDatum");
  return MbrSidInputs.Row(position)[MbrSidInputs.Column(column, "Data::GetInputDatum")];
}

double Data::GetOutputDatum(int position, int column) const {
  CheckPosition(position, "Data::GetOutputDatum");
  return MbrSidOutputs.Row(position)[MbrSidOutputs.Column(column, "Data::GetOutputDatum")];
}

void Data::SetInputDatum(int position, int column, double value) {
  CheckPosition(position, "Data::SetInputDatum");
  MbrSidInputs.Row(position)[MbrSidInputs.Column(column, "Data::SetInputDatum")] = value;
  CountChange();
}

void Data::SetOutputDatum(int position, int column, double value) {
  CheckPosition(position, "Data::SetOutputDatum");
  MbrSidOutputs.Row(position)[MbrSidOutputs.Column(column, "Data::SetOutputDatum")] = value;
  CountChange();
}

// --- Rows ------------------------------------------------------------------------------------

void Data::GetInputRow(int position, std::span<double> out) const {
  CheckPosition(position, "Data::GetInputRow");
  MbrSidInputs.Copy(position, out);
}

void Data::GetOutputRow(int position, std::span<double> out) const {
  CheckPosition(position, "Data::GetOutputRow");
  MbrSidOutputs.Copy(position, out);
}

void Data::GetInputRow(int position, std::span<double> out, std::span<const int> columns) const {
  CheckPosition(position, "Data::GetInputRow");
  MbrSidInputs.Copy(position, out, columns, "Data::GetInputRow");
}

void Data::GetOutputRow(int position, std::span<double> out, std::span<const int> columns) const {
  CheckPosition(position, "Data::GetOutputRow");
  MbrSidOutputs.Copy(position, out, columns, "Data::GetOutputRow");
}

int Data::GetBlock(std::span<double> inputs_out, std::span<double> outputs_out, int first,
                   int last) const {
  if (!IsValidRow(first)) throw TException("Data Block Fault", "Bad Parameter", "Data::GetBlock");
  const int end = std::min(MbrNdxLast, last);
  if (first > end) return 0;
  for (int position = first; position <= end; ++position) {
    const int index = position - first;
    GetInputRow(position, RowOfBlock(inputs_out, index, Inputs()));
    GetOutputRow(position, RowOfBlock(outputs_out, index, Outputs()));
  }
  return end - first + 1;
}

// --- Labels ----------------------------------------------------------------------------------

std::size_t Data::LabelIndex(int position, const char* function) const {
  Assert(MbrBolHasLabels, "MbrBolHasLabels");
  CheckPosition(position, function);
  return static_cast<std::size_t>(position);
}

LabelList Data::GetLabels(int position) const {
  return MbrDyaLabels[LabelIndex(position, "Data::GetLabels")];
}

void Data::SetLabels(int position, const LabelList* labels) {
  MbrDyaLabels[LabelIndex(position, "Data::SetLabels")] = labels ? *labels : LabelList();
  CountChange();
}

void Data::ClearLabels(int position) {
  MbrDyaLabels[LabelIndex(position, "Data::ClearLabels")].Clear();
  CountChange();
}

void Data::AppendLabel(int position, std::string_view name, double value) {
  MbrDyaLabels[LabelIndex(position, "Data::AppendLabel")].Append(name, value);
  CountChange();
}

// --- Stepping --------------------------------------------------------------------------------

// Where a step of n from the cursor leads. In a ring that has wrapped the positions go round as the
// rows do by age; what happens at the ends of another one is laid down.
std::int64_t Data::PositionAfter(int n) const {
  if (MbrNdxDataRows == 1) return MbrNdxFirst;
  if (MbrNdxFirst > MbrNdxLast) {
    const std::int64_t position = (std::int64_t{MbrNdxCursor} + n) % MbrNdxRows;
    return position < 0 ? position + MbrNdxRows : position;
  }
  if (n > MbrNdxDataRows && MbrNdxRows > 0) n %= MbrNdxRows;
  const std::int64_t position = std::int64_t{MbrNdxCursor} + n;
  if (MbrNdxFirst < MbrNdxLast) {
    return position > MbrNdxLast ? position - MbrNdxDataRows : position;
  }
  return position >= MbrNdxRows ? position - MbrNdxRows : position;
}

void Data::Step(int n) {
  SetCursor(ToInt32(PositionAfter(n)));
}

void Data::Current(std::span<double> inputs, std::span<double> outputs, LabelList* labels) const {
  const int position = MbrNdxCursor;
  if (!InRing(position)) throw TException("Invalid Data Row", "Bad Parameter", "Data::GetInputRow");
  if (!inputs.empty()) MbrSidInputs.CopySelected(position, inputs, "Data::Current");
  if (!outputs.empty()) {
    if (MbrSidInputs.Selection().empty())
      MbrSidOutputs.Copy(position, outputs);
    else
      MbrSidOutputs.CopySelected(position, outputs, "Data::Current");
  }
  if (labels && MbrBolHasLabels) *labels = MbrDyaLabels[static_cast<std::size_t>(position)];
}

void Data::Next(std::span<double> inputs, std::span<double> outputs, LabelList* labels) {
  Step(1);
  Current(inputs, outputs, labels);
}

void Data::Previous(std::span<double> inputs, std::span<double> outputs) {
  Step(-1);
  Current(inputs, outputs);
}

// --- Column selections -----------------------------------------------------------------------

void Data::SetInputSelection(std::span<const int> columns) {
  MbrSidInputs.Select(columns);
}

void Data::SetSelections(std::span<const int> inputs, std::span<const int> outputs) {
  SetInputSelection(inputs);
  MbrSidOutputs.Select(outputs);
}

std::unique_ptr<Data> Data::Clone() const {
  auto clone = std::make_unique<Data>(MbrNdxRows, Inputs(), Outputs(), MbrBolHasLabels);
  *clone = *this;
  return clone;
}

}  // namespace kiln
