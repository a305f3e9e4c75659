#pragma once

#include <memory>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "DataTools/DataManip/TColumnBounds.h"

namespace kiln {

// Where a column stands in a data set.
struct ColumnPlace {
  std::span<const double> DataRow::*Side;  // the inputs or the outputs
  int Column;
};

// Makes new data sets out of others.
//
// Every operation reads its source from the oldest row to the newest, also where the ring has
// wrapped, and leaves it as it was, its cursor included. "Row n" below counts from the oldest.
//
// All throw TException: "Data source null" ("Null Pointer Parameter") for a null source, "Invalid
// Data Size" when the result would be larger than a data set can be, and what stands at each, in
// the category "Bad Parameter".
class TDataManip {
 public:
  // --- Selections of rows and columns --------------------------------------------------------

  // Rows with a memory: row n of the result has the inputs of `lag` source rows side by side, those
  // of row n + lag - 1 first and then back in time to row n. Outputs and labels are those of row
  // n + lag - 1. A lag of 1 gives a clone.
  // Throws "Invalid number of time steps" if lag < 1, "Insufficient rows" if there are fewer.
  static std::unique_ptr<Data> TimeStepLag(const Data* source, int lag);

  // Rows with a foresight: row n of the result has the inputs of the rows n, n + 1, ...
  // n + steps - 1 side by side, and the outputs and labels of row n. One step gives a clone.
  // Throws as TimeStepLag.
  static std::unique_ptr<Data> TimeStepAdvance(const Data* source, int steps);

  // The listed columns in the listed order, of the inputs (with all outputs) or of both sides. The
  // result has as many positions as the source, and can carry labels as the source can, but its
  // rows have none.
  // Throws "Invalid data column" for a column that does not exist, and for a list that is longer
  // than the side has columns.
  static std::unique_ptr<Data> Extract(const Data* source, std::span<const int> columns);
  static std::unique_ptr<Data> Extract(const Data* source, std::span<const int> input_columns,
                                       std::span<const int> output_columns);

  // The columns at the listed places, of either side, in the listed order, with all labels. The
  // result has as many positions as the source.
  // REQUIRES: the places exist.
  static std::unique_ptr<Data> Rearrange(const Data* source,
                                         std::span<const ColumnPlace> input_places,
                                         std::span<const ColumnPlace> output_places);

  // The listed rows in the listed order, with their labels. REQUIRES: the rows exist.
  static std::unique_ptr<Data> Rows(const Data* source, std::span<const int> rows);

  // The first n rows with their labels. Throws "Insufficient rows" if there are fewer, and "Invalid
  // Data Size" for a negative n.
  static std::unique_ptr<Data> GetFirstRows(int n, const Data* source);

  // Consecutive subsets of the given sizes, without labels.
  // Throws "Invalid number of subsets" when no size is given, "Invalid number of subset rows" for a
  // size below 1, "Total subset rows exceeds data rows in source".
  static std::vector<std::unique_ptr<Data>> Divide(const Data* source,
                                                   std::span<const int> rows_per_subset);

  // --- Random order --------------------------------------------------------------------------

  // All rows with their labels in random order. A null source is "Null data source".
  static std::unique_ptr<Data> Shuffle(const Data* source);

  // A set balanced between classes: counts[i] rows drawn at random from sources[i], all in random
  // order, with the labels that they had. A null source is "Null data source".
  // REQUIRES: as many counts as sources.
  // Throws "Insufficient number of classes" for fewer than two, "Data sources differ in columns",
  // "Insufficient rows" when a source has fewer than are to be drawn.
  static std::unique_ptr<Data> Recombine(std::span<const Data* const> sources,
                                         std::span<const int> counts);

  // --- Linear normalisation ------------------------------------------------------------------

  // All rows with their labels, the values of each side normalised or denormalised by its bounds; a
  // side with bounds `{}` is copied. The sides may have bounds of different kinds.
  // Throws "Invalid number of bounds" when a side has bounds, but not one pair a column.
  static std::unique_ptr<Data> Normalise(const Data* source, const TColumnBounds& inputs,
                                         const TColumnBounds& outputs);
  static std::unique_ptr<Data> Denormalise(const Data* source, const TColumnBounds& inputs,
                                           const TColumnBounds& outputs);
};

}  // namespace kiln
