#include "Tarn/TMFGroups.h"

#include <algorithm>

namespace kiln {

TMFGroups::TMFGroups(std::span<const int> counts) {
  firsts_.reserve(counts.size() + 1);
  for (const int count : counts) firsts_.push_back(NumMF() + static_cast<std::size_t>(count));
}

std::size_t TMFGroups::VariableOf(std::size_t mf) const {
  const auto behind = std::ranges::upper_bound(firsts_, mf);
  return static_cast<std::size_t>(behind - firsts_.begin()) - 1;
}

std::vector<int> TMFGroups::Counts() const {
  std::vector<int> counts(NumVariables());
  for (std::size_t v = 0; v < counts.size(); ++v) counts[v] = static_cast<int>(Count(v));
  return counts;
}

}  // namespace kiln
