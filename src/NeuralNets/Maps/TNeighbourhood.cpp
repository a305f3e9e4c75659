#include "NeuralNets/Maps/TNeighbourhood.h"

#include <algorithm>

namespace kiln {

namespace {

// The whole part of a radius, at most the size of the grid, so that sums with coordinates cannot
// overflow; -1 for an empty box.
int WholePart(double radius, int size) {
  if (!(radius > -1.0)) return -1;
  return radius < size ? static_cast<int>(radius) : size;
}

}  // namespace

TNeighbourhood::TNeighbourhood(const TMapGrid& grid)
    : grid_(grid),
      radii_(grid.NumDimensions(), 0),
      lower_(grid.NumDimensions()),
      upper_(grid.NumDimensions()),
      current_(grid.NumDimensions()) {}

void TNeighbourhood::SetRadii(std::span<const double> radii) {
  std::ranges::transform(radii, grid_.Sizes(), radii_.begin(), WholePart);
}

bool TNeighbourhood::PlaceAround(std::size_t winner) {
  grid_.CoordinatesOf(winner, current_);
  for (std::size_t k = 0; k < radii_.size(); ++k) {
    lower_[k] = std::max(0, current_[k] - radii_[k]);
    upper_[k] = std::min(grid_.Sizes()[k], current_[k] + radii_[k] + 1);
    if (lower_[k] >= upper_[k]) return false;
  }
  current_ = lower_;
  return true;
}

bool TNeighbourhood::NextRow() {
  for (std::size_t k = radii_.size() - 1; k-- > 0;) {
    if (++current_[k] < upper_[k]) return true;
    current_[k] = lower_[k];
  }
  return false;
}

}  // namespace kiln
