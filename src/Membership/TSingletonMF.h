#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TCentredMF.h"

namespace kiln {

// A single value:
//   m(x) = 1 for x = centre exactly, otherwise 0
class TSingletonMF : public TCentredMF {
 public:
  static constexpr std::string_view kType = "Singleton";

  TSingletonMF(std::optional<std::string> name, double centre)
      : TCentredMF(kType, std::move(name), centre) {}

  double GetMembership(double x) const override { return x == Centre() ? 1.0 : 0.0; }
};

}  // namespace kiln
