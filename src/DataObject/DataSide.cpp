#include "DataObject/DataSide.h"

#include <algorithm>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

DataSide::DataSide(int positions, int columns, const char* column_error)
    : MbrNdxColumns(columns),
      MbrDyaValues(static_cast<std::size_t>(positions) * static_cast<std::size_t>(columns)),
      MbrTxtColumnError(column_error) {}

std::size_t DataSide::Column(int column, const char* function) const {
  if (column < 0 || column >= MbrNdxColumns)
    throw TException(MbrTxtColumnError, "Bad Parameter", function);
  return static_cast<std::size_t>(column);
}

void DataSide::Assign(int position, std::span<const double> values) {
  if (values.empty()) return;
  const auto row = Row(position);
  Assert(values.size() == row.size(), "values.size() == row.size()");
  std::copy(values.begin(), values.end(), row.begin());
}

void DataSide::Clear(int position) {
  const auto row = Row(position);
  std::fill(row.begin(), row.end(), 0.0);
}

void DataSide::Clear() {
  std::fill(MbrDyaValues.begin(), MbrDyaValues.end(), 0.0);
}

void DataSide::Copy(int position, std::span<double> out) const {
  const auto row = Row(position);
  Assert(out.size() >= row.size(), "out.size() >= row.size()");
  std::copy(row.begin(), row.end(), out.begin());
}

void DataSide::Copy(int position, std::span<double> out, std::span<const int> columns,
                    const char* function) const {
  const auto row = Row(position);
  Assert(out.size() >= columns.size(), "out.size() >= columns.size()");
  std::transform(columns.begin(), columns.end(), out.begin(),
                 [&](int column) { return row[Column(column, function)]; });
}

void DataSide::CopySelected(int position, std::span<double> out, const char* function) const {
  if (MbrDyaSelection.empty()) return Copy(position, out);
  Copy(position, out, MbrDyaSelection, function);
}

}  // namespace kiln
