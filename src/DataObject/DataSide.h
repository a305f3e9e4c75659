#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kiln {

// The values of one side of a data set, its inputs or its outputs: one row of `Columns()` values a
// position, row after row in one buffer, and the columns selected for stepping.
//
// Positions are checked by the caller, columns by the side.
class DataSide {
 public:
  // All values are zero and nothing is selected. `column_error` is the message of the TException
  // ("Bad Parameter") about a column that does not exist; it must outlive the side.
  // REQUIRES: neither count is negative.
  DataSide(int positions, int columns, const char* column_error);

  int Columns() const { return MbrNdxColumns; }

  std::span<const double> Row(int position) const {
    return {MbrDyaValues.data() + Offset(position), static_cast<std::size_t>(MbrNdxColumns)};
  }
  std::span<double> Row(int position) {
    return {MbrDyaValues.data() + Offset(position), static_cast<std::size_t>(MbrNdxColumns)};
  }

  // The place of `column` in a row. `function` is named by the TException.
  std::size_t Column(int column, const char* function) const;

  // Overwrites a row; an empty span leaves it as it is. Throws TAssertion for any other number of
  // values than there are columns.
  void Assign(int position, std::span<const double> values);

  // Sets a row, or all of them, to zeros.
  void Clear(int position);
  void Clear();

  // Copies a row, or the listed columns of it in the listed order. Throws TAssertion when `out` is
  // too small.
  void Copy(int position, std::span<double> out) const;
  void Copy(int position, std::span<double> out, std::span<const int> columns,
            const char* function) const;

  // The columns selected for stepping, in the order in which it returns them; an empty list is no
  // selection.
  const std::vector<int>& Selection() const { return MbrDyaSelection; }
  void Select(std::span<const int> columns) {
    MbrDyaSelection.assign(columns.begin(), columns.end());
  }

  // Copies the selected columns of a row, or the whole row where there is no selection.
  void CopySelected(int position, std::span<double> out, const char* function) const;

 private:
  std::size_t Offset(int position) const {
    return static_cast<std::size_t>(position) * static_cast<std::size_t>(MbrNdxColumns);
  }

  int MbrNdxColumns;
  std::vector<double> MbrDyaValues;
  std::vector<int> MbrDyaSelection;
  const char* MbrTxtColumnError;
};

}  // namespace kiln
