#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

// Conversions to narrower types that give the nearest value where the exact one has no place.
namespace kiln {

inline std::int32_t ToInt32(std::int64_t value) {
  using TLimits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, TLimits::min(), TLimits::max()));
}

// Not-a-number becomes 0, and what is beyond the largest number the largest of its sign.
inline float ToSingle(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return std::isnan(value) ? 0.0F : static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

}  // namespace kiln
