#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DataObject/LabelList.h"

namespace kiln {

// One row of a data set as a reader of the whole set meets it. The views hold until the set
// changes.
struct DataRow {
  int Position;                     // where the row stands in the ring
  std::span<const double> Inputs;   // one value an input column
  std::span<const double> Outputs;  // one value an output column
  const LabelList* Labels;          // null when the set carries no labels
};

// A data set: a ring of `Rows()` positions, each with a row of input values, a row of output values
// and, if the set carries labels, a label list. Rows are appended; once every position is taken a
// new row overwrites the oldest.
//
// Operations take *positions* (0..Rows()-1), not row numbers: in a ring that has wrapped the oldest
// row stands at First(). Whoever reads a whole set uses Row(n), which counts from the oldest.
//
// A position is accepted by the rule of IsValidRow, which is looser than "holds a row" while the
// ring has not wrapped and tighter afterwards. A position outside 0..Rows()-1 is never accepted.
// Every operation that takes a position throws TException "Invalid Data Row" ("Bad Parameter") for
// one that is not accepted.
//
// The values of a side stand row after row in one buffer.
class Data {
 public:
  // An empty set of `rows` positions; column counts of 0 are sides without values.
  // Throws TException "Invalid Data Size" ("Bad Parameter") if a count is negative or the set would
  // hold more than kMaxNumbers values or rows; std::bad_alloc.
  Data(int rows, int inputs, int outputs, bool has_labels);
  virtual ~Data() = default;

  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;

  static constexpr std::int64_t kMaxNumbers = std::int64_t{1} << 30;

  int Rows() const { return MbrNdxRows; }          // positions
  int DataRows() const { return MbrNdxDataRows; }  // positions that hold a row
  int Inputs() const { return MbrNdxInputs; }      // input columns
  int Outputs() const { return MbrNdxOutputs; }    // output columns
  bool HasLabels() const { return MbrBolHasLabels; }
  int First() const { return MbrNdxFirst; }    // position of the oldest row
  int Last() const { return MbrNdxLast; }      // position of the newest row
  int Cursor() const { return MbrNdxCursor; }  // where stepping stands; may be negative
  int ChangeCount() const { return MbrNdxChangeCount; }

  // --- The whole set, oldest row first -------------------------------------------------------

  // The n-th row counted from the oldest, right for a wrapped ring too.
  // REQUIRES: 0 <= n < DataRows().
  DataRow Row(int n) const;

  // --- Filling -------------------------------------------------------------------------------

  // Appends a row. An empty span or a null list leaves that side as zeros or without labels, also
  // where an old row is overwritten. REQUIRES: Rows() > 0; a span that is not empty has one value
  // a column.
  void AddRow(std::span<const double> inputs, std::span<const double> outputs,
              const LabelList* labels = nullptr);

  // Appends `count` rows that stand one after the other in each span; `labels`, when not empty, has
  // a list for each. REQUIRES: as for AddRow, for each row.
  void AddBlock(std::span<const double> inputs, std::span<const double> outputs, int count,
                std::span<const LabelList> labels = {});

  // Overwrites the values at a position; an empty span leaves the side as it is. The labels become
  // a copy of `labels`, none when it is null.
  void SetRow(int row, std::span<const double> inputs, std::span<const double> outputs,
              const LabelList* labels = nullptr);

  // Forgets every row; the column selections stay.
  void Clear();

  // --- Single values -------------------------------------------------------------------------
  // Throw TException "Invalid Input Data Column" or "Invalid Output Data Column" too.

  double GetInputDatum(int row, int column) const;
  double GetOutputDatum(int row, int column) const;
  void SetInputDatum(int row, int column, double value);
  void SetOutputDatum(int row, int column, double value);

  // --- Rows ----------------------------------------------------------------------------------

  // Copies a side of a row. REQUIRES: `out` has room for the columns asked for, and listed columns
  // exist.
  void GetInputRow(int row, std::span<double> out) const;
  void GetOutputRow(int row, std::span<double> out) const;
  void GetInputRow(int row, std::span<double> out, std::span<const int> columns) const;
  void GetOutputRow(int row, std::span<double> out, std::span<const int> columns) const;

  // Copies the positions from_row..min(Last(), to_row), row after row, and returns their number, 0
  // when there are none. Throws TException "Data Block Fault" when from_row is not accepted.
  int GetBlock(std::span<double> inputs_out, std::span<double> outputs_out, int from_row,
               int to_row) const;

  // --- Labels --------------------------------------------------------------------------------
  // REQUIRES: HasLabels().

  LabelList GetLabels(int row) const;
  void SetLabels(int row, const LabelList* labels);  // null clears
  void ClearLabels(int row);
  void AppendLabel(int row, std::string_view name, double value);

  // --- Stepping ------------------------------------------------------------------------------

  // Moves the cursor by n, wrapping over the newest row; a step back below 0 is kept as it is.
  void Step(int n);

  // Copies the row at the cursor. An input selection restricts the inputs; an output selection
  // counts only beside one. Empty output spans are left alone. Throws TException "Invalid Data Row"
  // when the cursor stands outside the ring. REQUIRES: spans have room for what is selected.
  void Current(std::span<double> inputs, std::span<double> outputs,
               LabelList* labels = nullptr) const;
  void Next(std::span<double> inputs, std::span<double> outputs, LabelList* labels = nullptr);
  void Previous(std::span<double> inputs, std::span<double> outputs);

  // The next Next() gives the oldest row.
  void ResetCursor() { MbrNdxCursor = MbrNdxLast; }
  void SetCursor(int position) { MbrNdxCursor = position; }

  // --- Column selections ---------------------------------------------------------------------
  // Lists of columns in the order in which stepping returns them; an empty one selects nothing.
  // REQUIRES: the columns exist.

  void SetInputSelection(std::span<const int> columns);
  void SetSelections(std::span<const int> inputs, std::span<const int> outputs);
  std::vector<int> GetInputSelection() const { return MbrDyaInputSelection; }

  // A set equal to this one in everything, the cursor and the change count included.
  std::unique_ptr<Data> Clone() const;

  // Whether a position is accepted: any position while Last() >= First(); otherwise those from
  // Last() to First().
  bool IsValidRow(int row) const;

 private:
  int MbrNdxRows;
  int MbrNdxDataRows = 0;
  int MbrNdxInputs;
  int MbrNdxOutputs;
  bool MbrBolHasLabels;
  int MbrNdxFirst = 0;
  int MbrNdxLast = 0;
  int MbrNdxChangeCount = 0;
  int MbrNdxCursor = 0;
  std::vector<double> MbrDyaInputs;     // Rows() x Inputs(), row-major
  std::vector<double> MbrDyaOutputs;    // Rows() x Outputs(), row-major
  std::vector<LabelList> MbrDyaLabels;  // one a position when the set carries labels
  std::vector<int> MbrDyaInputSelection;
  std::vector<int> MbrDyaOutputSelection;
};

}  // namespace kiln
