#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Maps/TMapGrid.h"

namespace kiln {

// The box of units around a winner: along dimension k from p[k] - r[k] to p[k] + r[k], as far as
// the grid goes, where p are the winner's coordinates. Without radii, the winner alone.
class TNeighbourhood {
 public:
  // REQUIRES: `grid` outlives this object.
  explicit TNeighbourhood(const TMapGrid& grid);

  // Takes the whole parts of the radii. A whole part below 0, or a radius that is no number, leaves
  // the box empty.
  // REQUIRES: a radius for each dimension.
  void SetRadii(std::span<const double> radii);

  // What was taken: whole numbers, at most the sizes of the grid, -1 for an empty box.
  std::span<const int> Radii() const { return radii_; }

  // Calls visit(first, last) for the units first..last-1 of every row of the box, in ascending
  // order; a row runs along the last dimension. REQUIRES: winner < NumUnits() of the grid.
  template <typename TVisit>
  void ForEachRow(std::size_t winner, const TVisit& visit) {
    if (!PlaceAround(winner)) return;
    const auto length = static_cast<std::size_t>(upper_.back() - lower_.back());
    do {
      const std::size_t first = grid_.UnitAt(current_);
      visit(first, first + length);
    } while (NextRow());
  }

 private:
  // Goes to the first row of the box; false when it is empty.
  bool PlaceAround(std::size_t winner);
  bool NextRow();

  const TMapGrid& grid_;
  std::vector<int> radii_;
  std::vector<int> lower_;  // the corners of the box, the upper one exclusive
  std::vector<int> upper_;
  std::vector<int> current_;
};

}  // namespace kiln
