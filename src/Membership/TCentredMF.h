#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "Membership/TBasicMF.h"

namespace kiln {

// A membership function that is not bounded on both sides; at its centre it is 1.
class TCentredMF : public TBasicMF {
 public:
  double Centre() const { return centre_; }

 protected:
  TCentredMF(std::string_view type, std::optional<std::string> name, double centre)
      : TBasicMF(type, std::move(name)), centre_(centre) {}

 private:
  double centre_;
};

}  // namespace kiln
