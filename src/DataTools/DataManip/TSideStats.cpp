#include "DataTools/DataManip/TSideStats.h"

#include <algorithm>
#include <cstddef>

namespace kiln {

TSideStats::TSideStats(int columns) {
  const std::size_t slots = static_cast<std::size_t>(columns) + 1;
  for (auto* figures : {&DyaMaxima, &DyaMinima, &DyaAverages}) figures->resize(slots);
  for (auto* positions : {&DyaMaximumPositions, &DyaMinimumPositions}) positions->resize(slots);
}

void TSideStats::Begin(std::span<const double> row, int position) {
  for (auto* figures : {&DyaMaxima, &DyaMinima, &DyaAverages})
    std::copy(row.begin(), row.end(), figures->begin());
  for (auto* positions : {&DyaMaximumPositions, &DyaMinimumPositions})
    std::fill_n(positions->begin(), row.size(), position);
}

void TSideStats::Add(std::span<const double> row, int position) {
  for (std::size_t c = 0; c < row.size(); ++c) {
    const double value = row[c];
    DyaAverages[c] += value;
    if (value > DyaMaxima[c]) {
      DyaMaxima[c] = value;
      DyaMaximumPositions[c] = position;
    }
    if (value < DyaMinima[c]) {
      DyaMinima[c] = value;
      DyaMinimumPositions[c] = position;
    }
  }
}

void TSideStats::Finish(int rows) {
  for (double& average : DyaAverages) average /= rows;
}

}  // namespace kiln
