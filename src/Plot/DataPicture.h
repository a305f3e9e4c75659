#pragma once

#include <cstddef>
#include <string_view>

#include "DataObject/Data.h"
#include "Plot/TPicture.h"

namespace kiln {

// Two columns of a data set against each other, counted as in TSetColumns, classes in colours and
// shapes. Of many rows every so many-th is shown, and the title says so.
// REQUIRES: both columns exist, and NumFinite of both at least 2.
TPicture ScatterPicture(std::string_view alias, const Data& set, std::size_t x, std::size_t y);

// How the values of one column are distributed, for each class. REQUIRES: as above.
TPicture DistributionPicture(std::string_view alias, const Data& set, std::size_t column);

// In how many rows both columns are finite numbers.
int NumFinite(const Data& set, std::size_t x, std::size_t y);

// Which of many rows are drawn: one of each group of so many neighbours that some thousands are
// drawn. Its place in the group varies: where the rows of classes take turns, every n-th row might
// always be one of the same class.
class TThinning {
 public:
  explicit TThinning(int rows);

  bool Draws(int n) const;  // the n-th row, from 0

  // ", one in 250 of 1000000 rows" for the title; empty where all are drawn.
  std::string Remark() const;

 private:
  int rows_;
  int stride_;
};

// The axis of values within these bounds, with a little room at both ends.
TAxis ValueAxis(std::string name, double lower, double upper);

}  // namespace kiln
