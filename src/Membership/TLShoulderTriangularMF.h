#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TCentredMF.h"

namespace kiln {

// Full membership without limit to the left of the centre, falling to the right:
//   m(x) = 0                                     for x > right
//   m(x) = 1                                     for x <= centre
//   m(x) = 1 - (x - centre) / (right - centre)   otherwise
// The first case that holds decides.
class TLShoulderTriangularMF : public TCentredMF {
 public:
  static constexpr std::string_view kType = "LeftShoulderedTriangular";

  TLShoulderTriangularMF(std::optional<std::string> name, double centre, double right_bound)
      : TCentredMF(kType, std::move(name), centre), right_bound_(right_bound) {}

  double RightBound() const { return right_bound_; }

  double GetMembership(double x) const override {
    if (x > right_bound_) return 0.0;
    if (x <= Centre()) return 1.0;
    return 1.0 - (x - Centre()) / (right_bound_ - Centre());
  }

 private:
  double right_bound_;
};

}  // namespace kiln
