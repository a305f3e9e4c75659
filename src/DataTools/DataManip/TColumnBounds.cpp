#include "DataTools/DataManip/TColumnBounds.h"

#include <algorithm>

namespace kiln {

void TColumnBounds::Normalise(std::span<double> values) const {
  for (std::size_t c = 0; c < MbrDyaMaxima.size(); ++c) {
    const double range = MbrDyaMaxima[c] - MbrDyaMinima[c];
    values[c] = range == 0.0 ? 0.0 : std::clamp((values[c] - MbrDyaMinima[c]) / range, 0.0, 1.0);
  }
}

void TColumnBounds::Denormalise(std::span<double> values) const {
  for (std::size_t c = 0; c < MbrDyaMaxima.size(); ++c)
    values[c] = values[c] * (MbrDyaMaxima[c] - MbrDyaMinima[c]) + MbrDyaMinima[c];
}

}  // namespace kiln
