#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Plot/TPicture.h"

namespace kiln {

struct TTick {
  double at;
  std::string text;
};

// At most so many round numbers along an axis, or fewer where there are no more round ones.
std::vector<TTick> RoundTicks(const TAxis& axis, std::size_t most);

// The distance between such numbers on an axis that is not logarithmic.
double TickStep(const TAxis& axis, std::size_t most);

// Where a value stands along an axis, from 0 at its lower end to 1.
double ShareOf(const TAxis& axis, double value);

}  // namespace kiln
