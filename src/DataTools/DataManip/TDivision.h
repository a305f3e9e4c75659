#pragma once

#include <span>
#include <vector>

#include "DataObject/Data.h"

namespace kiln {

// Which rows of a data set, counted from its oldest, go into which part, in ascending order.
using TParts = std::vector<std::vector<int>>;

// The class of each row, oldest first: classes are numbered in the order in which they come. Of a
// set with labels it is the heaviest label of a row, the first of several; of any other its
// outputs.
std::vector<int> ClassesOf(const Data& set);

// Parts of the given sizes, one after the other.
// REQUIRES: no size is negative; together they have at most so many rows as there are.
TParts DivideInOrder(std::span<const int> sizes);

// Parts of the given sizes in which each class has its share of rows, rounded up or down: of n rows
// of a class, n size / rows. Earlier rows of a class go into earlier parts.
// REQUIRES: as above, where classes has a class for each row.
TParts DivideByClass(std::span<const int> classes, std::span<const int> sizes);

}  // namespace kiln
