#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TBoundedMF.h"

namespace kiln {

// A triangle with its feet on the bounds:
//   m(x) = 0                                     for x < left or x > right
//   m(x) = 1                                     for x = centre
//   m(x) = 1 - (x - centre) / (right - centre)   for x > centre
//   m(x) = 1 - (centre - x) / (centre - left)    for x < centre
// The first case that holds decides: with the centre on a bound that side is a step.
class TTriangularMF : public TBoundedMF {
 public:
  static constexpr std::string_view kType = "Triangular";

  TTriangularMF(std::optional<std::string> name, double left_bound, double centre,
                double right_bound)
      : TBoundedMF(kType, std::move(name), left_bound, right_bound), centre_(centre) {}

  double Centre() const { return centre_; }

  double GetMembership(double x) const override {
    if (x < LeftBound() || x > RightBound()) return 0.0;
    if (x == centre_) return 1.0;
    if (x > centre_) return 1.0 - (x - centre_) / (RightBound() - centre_);
    return 1.0 - (centre_ - x) / (centre_ - LeftBound());
  }

 private:
  double centre_;
};

}  // namespace kiln
