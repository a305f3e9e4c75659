#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

namespace kiln {

// The nearest number of single precision. Whatever is beyond the largest becomes the largest of its
// sign, and not-a-number becomes 0.
inline float ToSingle(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return std::isnan(value) ? 0.0F : static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

}  // namespace kiln
