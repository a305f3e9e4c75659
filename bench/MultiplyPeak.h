#pragma once

#include "Measure.h"

namespace kiln {

// The most that one core of this processor multiplies: chains of x = x a + b in registers of the
// instruction set that Kiln's kernels take, enough of them for each to wait for nothing but room.
// A pass is so many operations, a product and a sum being two.
inline constexpr double kPeakOperations = 1e6;
TWork MultiplyPeak();

}  // namespace kiln
