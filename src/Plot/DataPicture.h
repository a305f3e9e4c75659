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

// What a title says where only every `stride`-th of `all` rows is drawn; nothing for each.
std::string Thinned(int stride, int all);

// Every how many-th of `rows` rows is drawn.
int StrideFor(int rows);

// The axis of values within these bounds, with a little room at both ends.
TAxis ValueAxis(std::string name, double lower, double upper);

}  // namespace kiln
