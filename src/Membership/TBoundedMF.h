#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TBasicMF.h"

namespace kiln {

// A membership function that is 0 outside an interval.
class TBoundedMF : public TBasicMF {
 public:
  double LeftBound() const { return left_bound_; }
  double RightBound() const { return right_bound_; }

 protected:
  TBoundedMF(std::string_view type, std::optional<std::string> name, double left_bound,
             double right_bound)
      : TBasicMF(type, std::move(name)), left_bound_(left_bound), right_bound_(right_bound) {}

 private:
  double left_bound_;
  double right_bound_;
};

}  // namespace kiln
