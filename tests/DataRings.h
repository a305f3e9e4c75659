#pragma once

#include <memory>

#include "DataObject/Data.h"
#include "Failures.h"
#include "Values.h"

namespace kiln {

// A ring of `rows` positions to which the rows (n, n + 0.5) -> -n, n = 1..count, were added, each
// with the label "row" of weight n.
inline std::shared_ptr<Data> MakeRing(int rows, int count) {
  auto data = std::make_shared<Data>(rows, 2, 1, true);
  for (double n = 1; n <= count; ++n) {
    LabelList labels;
    labels.Append("row", n);
    data->AddRow(TValues{n, n + 0.5}, TValues{-n}, &labels);
  }
  return data;
}

}  // namespace kiln
