#pragma once

#include <memory>

#include "DataObject/Data.h"

namespace kiln {

// A data set of rows of inputs, each drawn from [0, 1]; the same one every time.
std::unique_ptr<Data> RandomRows(int rows, int inputs);

}  // namespace kiln
