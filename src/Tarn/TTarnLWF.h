#pragma once

#include "Tarn/TTarnBP.h"

namespace kiln {

// Learning with forgetting for a Tarn: the same descent, under the LWF penalty of its parameters.
// It is a kind of its own because users choose it for the forgetting, which they cannot ask of a
// TTarnBP.
class TTarnLWF : public TTarnBP {
 public:
  using TTarnBP::TTarnBP;
};

}  // namespace kiln
