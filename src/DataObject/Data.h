#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "DataObject/DataSide.h"
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

// What the columns of a data set are called. A side has a name for each column, or none.
struct ColumnNames {
  std::vector<std::string> Inputs;
  std::vector<std::string> Outputs;

  bool operator==(const ColumnNames&) const = default;
};

// A data set: a ring of `Rows()` positions, each with a row of input values, a row of output values
// and, if the set carries labels, a label list. Rows are appended; once every position is taken a
// new row overwrites the oldest.
//
// Operations take *positions* (0..Rows()-1), not row numbers: in a ring that has wrapped the oldest
// row stands at First(). Whoever reads a whole set uses Row(n), which counts from the oldest.
//
// A position is accepted by the rule of IsValidRow, which is looser than "holds a row" while the
// ring has not wrapped and tighter afterwards. Every operation that takes a position throws
// TException "Invalid Data Row" ("Bad Parameter") for one that is not accepted or that the ring
// does not have.
//
// Spans of the wrong size are a caller's mistake and throw TAssertion.
class Data {
 public:
  // An empty set of `rows` positions; column counts of 0 are sides without values.
  // Throws TException "Invalid Data Size" ("Bad Parameter") if a count is negative or the set would
  // have more than kMaxNumbers rows, columns or values, where a label list counts as three values;
  // throws std::bad_alloc.
  Data(std::int64_t rows, std::int64_t inputs, std::int64_t outputs, bool has_labels);
  Data(const Data&) = delete;
  virtual ~Data() = default;

  static constexpr std::int64_t kMaxNumbers = std::int64_t{1} << 30;

  int Rows() const { return MbrNdxRows; }                  // positions
  int DataRows() const { return MbrNdxDataRows; }          // positions that hold a row
  int Inputs() const { return MbrSidInputs.Columns(); }    // input columns
  int Outputs() const { return MbrSidOutputs.Columns(); }  // output columns
  bool HasLabels() const { return MbrBolHasLabels; }
  int First() const { return MbrNdxFirst; }    // position of the oldest row
  int Last() const { return MbrNdxLast; }      // position of the newest row
  int Cursor() const { return MbrNdxCursor; }  // where stepping stands; may be negative

  // Differs after every change of a row or its labels; counts up and wraps to the smallest int.
  int ChangeCount() const { return MbrNdxChangeCount; }

  const ColumnNames& Names() const { return MbrTxtNames; }
  void SetNames(ColumnNames names);  // REQUIRES: a name for each column of a side, or none

  // An empty set of `rows` positions that is otherwise like this one: its columns with their names,
  // and labels if this one carries some. Throws what the constructor does.
  std::unique_ptr<Data> MakeAlike(std::int64_t rows) const;

  // --- The whole set, oldest row first -------------------------------------------------------

  // The n-th row counted from the oldest, right for a wrapped ring too.
  // REQUIRES: 0 <= n < DataRows().
  DataRow Row(int n) const {
    const int beyond = MbrNdxRows - MbrNdxFirst;
    const int position = n < beyond ? MbrNdxFirst + n : n - beyond;
    return {position, MbrSidInputs.Row(position), MbrSidOutputs.Row(position),
            MbrBolHasLabels ? &MbrDyaLabels[static_cast<std::size_t>(position)] : nullptr};
  }

  // --- Filling -------------------------------------------------------------------------------

  // Appends a row. An empty span or a null list leaves that side as zeros or without labels, also
  // where an old row is overwritten. Labels given to a set without labels are left out.
  // Throws TException "Invalid Data Row" for a set of no positions.
  // REQUIRES: a span that is not empty has one value a column.
  void AddRow(std::span<const double> inputs, std::span<const double> outputs,
              const LabelList* labels = nullptr);

  // The values at a position of an empty set, to be set before AddAllRows makes a row of each
  // position. Several threads may do so at a time.
  struct RowValues {
    std::span<double> Inputs;
    std::span<double> Outputs;
  };
  RowValues ValuesAt(int position) {
    return {MbrSidInputs.Row(position), MbrSidOutputs.Row(position)};
  }
  void AddAllRows();

  // Appends `count` rows that stand one after the other in each span; `labels`, when not empty, has
  // a list for each. Throws and requires what AddRow does for each row.
  void AddBlock(std::span<const double> inputs, std::span<const double> outputs, int count,
                std::span<const LabelList> labels = {});

  // Appends `count` rows of another set, counted from its oldest, from its row `first` on; labels
  // only when both sets carry them. Throws what AddRow does.
  // REQUIRES: the rows exist, and the sets have the same columns.
  void AddRows(const Data& source, int first, int count);

  // Overwrites the values at a position; an empty span leaves the side as it is. The labels become
  // a copy of `labels`; null leaves the row without labels.
  void SetRow(int position, std::span<const double> inputs, std::span<const double> outputs,
              const LabelList* labels = nullptr);

  // Forgets every row: values become zeros, labels go, and first, last and cursor return to 0. The
  // column selections stay.
  void Clear();

  // --- Single values -------------------------------------------------------------------------
  // A column that does not exist throws TException "Invalid Input Data Column" or "Invalid Output
  // Data Column" ("Bad Parameter").

  double GetInputDatum(int position, int column) const;
  double GetOutputDatum(int position, int column) const;
  void SetInputDatum(int position, int column, double value);
  void SetOutputDatum(int position, int column, double value);

  // --- Rows ----------------------------------------------------------------------------------

  // Copies a side of a row, or the listed columns of it in the listed order; a listed column that
  // does not exist throws as above. REQUIRES: `out` has room for the columns asked for.
  void GetInputRow(int position, std::span<double> out) const;
  void GetOutputRow(int position, std::span<double> out) const;
  void GetInputRow(int position, std::span<double> out, std::span<const int> columns) const;
  void GetOutputRow(int position, std::span<double> out, std::span<const int> columns) const;

  // Copies the positions first..min(Last(), last), row after row, and returns their number, 0 when
  // there are none. Throws TException "Data Block Fault" ("Bad Parameter") when `first` is not
  // accepted. REQUIRES: each span has room for these rows of its side.
  int GetBlock(std::span<double> inputs_out, std::span<double> outputs_out, int first,
               int last) const;

  // --- Labels --------------------------------------------------------------------------------
  // REQUIRES: HasLabels().

  LabelList GetLabels(int position) const;
  void SetLabels(int position, const LabelList* labels);  // null clears
  void ClearLabels(int position);
  void AppendLabel(int position, std::string_view name, double value);

  // --- Stepping ------------------------------------------------------------------------------

  // Moves the cursor by n rows, by their age: behind the newest comes the oldest. A cursor whose
  // row has been overwritten stands before the oldest. In a ring that has not wrapped a step over
  // the newest row goes on at the oldest once, and a step back below 0 is kept as it is.
  void Step(int n);

  // Copies the row at the cursor, any position of the ring. An input selection restricts the
  // inputs; an output selection counts only beside one. A side whose span is empty is not copied,
  // nor are labels where `labels` is null or the set carries none. A selected column that does not
  // exist throws as above. REQUIRES: a span that is not empty has room for what is selected.
  void Current(std::span<double> inputs, std::span<double> outputs,
               LabelList* labels = nullptr) const;

  // Step(1) or Step(-1), then Current. The cursor has moved even where Current throws.
  void Next(std::span<double> inputs, std::span<double> outputs, LabelList* labels = nullptr);
  void Previous(std::span<double> inputs, std::span<double> outputs);

  // Goes to the newest row, so that Next() gives the oldest, or the first of those that are
  // appended meanwhile. Commands that have made something of all rows leave the cursor there.
  void ResetCursor() { SetCursor(MbrNdxLast); }
  void SetCursor(int position) {
    MbrNdxCursor = position;
    MbrBolCursorLost = false;
  }

  // --- Column selections ---------------------------------------------------------------------
  // Lists of columns in the order in which stepping returns them; an empty one selects nothing.

  void SetInputSelection(std::span<const int> columns);
  void SetSelections(std::span<const int> inputs, std::span<const int> outputs);
  std::vector<int> GetInputSelection() const { return MbrSidInputs.Selection(); }

  // A set equal to this one in everything, the cursor and the change count included.
  std::unique_ptr<Data> Clone() const;

  // Whether a position is accepted: any number while Last() >= First(), otherwise those from Last()
  // to First(). The ring need not have an accepted position.
  bool IsValidRow(int position) const {
    return MbrNdxLast >= MbrNdxFirst || (MbrNdxLast <= position && position <= MbrNdxFirst);
  }

 private:
  Data& operator=(const Data&) = default;  // for Clone

  bool InRing(int position) const { return position >= 0 && position < MbrNdxRows; }
  int Following(int position) const { return position + 1 < MbrNdxRows ? position + 1 : 0; }
  std::int64_t PositionAfter(int n) const;
  void CheckPosition(int position, const char* function) const;
  std::size_t LabelIndex(int position, const char* function) const;
  void CountChange();

  int MbrNdxRows;
  int MbrNdxDataRows = 0;
  int MbrNdxFirst = 0;
  int MbrNdxLast = 0;
  int MbrNdxCursor = 0;
  int MbrNdxChangeCount = 0;
  bool MbrBolCursorLost = false;  // its row has been overwritten
  bool MbrBolHasLabels;
  DataSide MbrSidInputs;
  DataSide MbrSidOutputs;
  ColumnNames MbrTxtNames;
  std::vector<LabelList> MbrDyaLabels;  // one a position when the set carries labels
};

}  // namespace kiln
