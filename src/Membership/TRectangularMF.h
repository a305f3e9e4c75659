#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TBoundedMF.h"

namespace kiln {

// A crisp interval, both ends included:
//   m(x) = 1 for left <= x <= right, otherwise 0
class TRectangularMF : public TBoundedMF {
 public:
  static constexpr std::string_view kType = "Rectangular";

  TRectangularMF(std::optional<std::string> name, double left_bound, double right_bound)
      : TBoundedMF(kType, std::move(name), left_bound, right_bound) {}

  double GetMembership(double x) const override {
    return LeftBound() <= x && x <= RightBound() ? 1.0 : 0.0;
  }
};

}  // namespace kiln
