#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TCentredMF.h"

namespace kiln {

// Rising from the left to the centre, full membership without limit to the right of it:
//   m(x) = 0                                    for x < left
//   m(x) = 1                                    for x >= centre
//   m(x) = 1 - (centre - x) / (centre - left)   otherwise
// The first case that holds decides.
class TRShoulderTriangularMF : public TCentredMF {
 public:
  static constexpr std::string_view kType = "RightShoulderedTriangular";

  TRShoulderTriangularMF(std::optional<std::string> name, double left_bound, double centre)
      : TCentredMF(kType, std::move(name), centre), left_bound_(left_bound) {}

  double LeftBound() const { return left_bound_; }

  double GetMembership(double x) const override {
    if (x < left_bound_) return 0.0;
    if (x >= Centre()) return 1.0;
    return 1.0 - (Centre() - x) / (Centre() - left_bound_);
  }

 private:
  double left_bound_;
};

}  // namespace kiln
