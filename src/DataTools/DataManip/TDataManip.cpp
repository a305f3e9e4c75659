#include "DataTools/DataManip/TDataManip.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <numeric>

#include "DataTools/DataManip/ManipChecks.h"

namespace kiln {

namespace {

void CheckColumns(std::span<const int> columns, int available) {
  const auto missing = [available](int column) { return column < 0 || column >= available; };
  if (columns.size() > static_cast<std::size_t>(available) ||
      std::any_of(columns.begin(), columns.end(), missing))
    ThrowManip("Invalid data column", "Extract");
}

std::vector<ColumnPlace> Places(std::span<const int> columns,
                                std::span<const double> DataRow::*side) {
  std::vector<ColumnPlace> places;
  for (const int column : columns) places.push_back({side, column});
  return places;
}

void Pick(const DataRow& row, std::span<const ColumnPlace> places, std::span<double> out) {
  std::ranges::transform(places, out.begin(), [&](const ColumnPlace& place) {
    return (row.*place.Side)[static_cast<std::size_t>(place.Column)];
  });
}

// The names of the columns at the places; none where one of them has none.
std::vector<std::string> NamesAt(const ColumnNames& names, std::span<const ColumnPlace> places) {
  std::vector<std::string> picked;
  for (const ColumnPlace& place : places) {
    const auto& side = place.Side == &DataRow::Inputs ? names.Inputs : names.Outputs;
    if (side.empty()) return {};
    picked.push_back(side[static_cast<std::size_t>(place.Column)]);
  }
  return picked;
}

// The names of inputs at `steps` steps side by side: "x", "x-1", "x-2" back in time, "x+1" forward.
std::vector<std::string> StepNames(const std::vector<std::string>& names, int steps,
                                   int direction) {
  std::vector<std::string> all;
  for (int k = 0; k < steps; ++k) {
    for (const std::string& name : names) {
      all.push_back(k == 0 ? name : name + (direction > 0 ? '+' : '-') + std::to_string(k));
    }
  }
  return all;
}

// The rows of the source from which there are `steps` rows in `direction` (1 forward, -1 back), the
// row itself counted, each with the inputs of these rows side by side.
std::unique_ptr<Data> StackRows(const Data& source, int steps, int direction,
                                const char* operation) {
  if (steps < 1) ThrowManip("Invalid number of time steps", operation);
  if (source.DataRows() < steps) ThrowManip("Insufficient rows", operation);
  if (steps == 1) return source.Clone();
  const int first = direction > 0 ? 0 : steps - 1;
  const int rows = source.DataRows() - (steps - 1);
  auto result = std::make_unique<Data>(rows, std::int64_t{source.Inputs()} * steps,
                                       source.Outputs(), source.HasLabels());
  result->SetNames({StepNames(source.Names().Inputs, steps, direction), source.Names().Outputs});
  std::vector<double> inputs(static_cast<std::size_t>(result->Inputs()));
  for (int n = first; n < first + rows; ++n) {
    auto block = inputs.begin();
    for (int k = 0; k < steps; ++k) {
      const auto step = source.Row(n + direction * k).Inputs;
      block = std::copy(step.begin(), step.end(), block);
    }
    const DataRow row = source.Row(n);
    result->AddRow(inputs, row.Outputs, row.Labels);
  }
  return result;
}

}  // namespace

std::unique_ptr<Data> TDataManip::TimeStepLag(const Data* source, int lag) {
  return StackRows(CheckedSource(source, "TimeStepLag"), lag, -1, "TimeStepLag");
}

std::unique_ptr<Data> TDataManip::TimeStepAdvance(const Data* source, int steps) {
  return StackRows(CheckedSource(source, "TimeStepAdvance"), steps, 1, "TimeStepAdvance");
}

std::unique_ptr<Data> TDataManip::Extract(const Data* source, std::span<const int> columns) {
  std::vector<int> outputs(static_cast<std::size_t>(CheckedSource(source, "Extract").Outputs()));
  std::iota(outputs.begin(), outputs.end(), 0);
  return Extract(source, columns, outputs);
}

std::unique_ptr<Data> TDataManip::Extract(const Data* source, std::span<const int> input_columns,
                                          std::span<const int> output_columns) {
  const Data& from = CheckedSource(source, "Extract");
  CheckColumns(input_columns, from.Inputs());
  CheckColumns(output_columns, from.Outputs());
  auto result = Rearrange(source, Places(input_columns, &DataRow::Inputs),
                          Places(output_columns, &DataRow::Outputs));
  if (result->HasLabels()) {
    for (int n = 0; n < result->DataRows(); ++n) result->ClearLabels(result->Row(n).Position);
  }
  return result;
}

std::unique_ptr<Data> TDataManip::Rearrange(const Data* source,
                                            std::span<const ColumnPlace> input_places,
                                            std::span<const ColumnPlace> output_places) {
  const Data& from = CheckedSource(source, "Rearrange");
  std::vector<double> inputs(input_places.size());
  std::vector<double> outputs(output_places.size());
  auto result = std::make_unique<Data>(from.Rows(), std::ssize(inputs), std::ssize(outputs),
                                       from.HasLabels());
  result->SetNames({NamesAt(from.Names(), input_places), NamesAt(from.Names(), output_places)});
  for (int n = 0; n < from.DataRows(); ++n) {
    const DataRow row = from.Row(n);
    Pick(row, input_places, inputs);
    Pick(row, output_places, outputs);
    result->AddRow(inputs, outputs, row.Labels);
  }
  return result;
}

std::unique_ptr<Data> TDataManip::Rows(const Data* source, std::span<const int> rows) {
  const Data& from = CheckedSource(source, "Rows");
  auto result = from.MakeAlike(std::ssize(rows));
  for (const int n : rows) result->AddRows(from, n, 1);
  return result;
}

std::unique_ptr<Data> TDataManip::GetFirstRows(int n, const Data* source) {
  const Data& from = CheckedSource(source, "GetFirstRows");
  if (from.DataRows() < n) ThrowManip("Insufficient rows", "GetFirstRows");
  auto result = from.MakeAlike(n);
  result->AddRows(from, 0, n);
  return result;
}

std::vector<std::unique_ptr<Data>> TDataManip::Divide(const Data* source,
                                                      std::span<const int> rows_per_subset) {
  if (rows_per_subset.empty()) ThrowManip("Invalid number of subsets", "Divide");
  const Data& from = CheckedSource(source, "Divide");
  if (*std::min_element(rows_per_subset.begin(), rows_per_subset.end()) < 1)
    ThrowManip("Invalid number of subset rows", "Divide");
  if (std::accumulate(rows_per_subset.begin(), rows_per_subset.end(), std::int64_t{0}) >
      from.DataRows())
    ThrowManip("Total subset rows exceeds data rows in source", "Divide");
  std::vector<std::unique_ptr<Data>> subsets;
  int first = 0;
  for (const int rows : rows_per_subset) {
    subsets.push_back(std::make_unique<Data>(rows, from.Inputs(), from.Outputs(), false));
    subsets.back()->SetNames(from.Names());
    subsets.back()->AddRows(from, first, rows);
    first += rows;
  }
  return subsets;
}

}  // namespace kiln
