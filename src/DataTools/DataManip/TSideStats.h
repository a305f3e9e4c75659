#pragma once

#include <span>
#include <vector>

namespace kiln {

// The figures of each column of one side of a data set. Behind the last column stands a spare one,
// which is always 0.
struct TSideStats {
  explicit TSideStats(int columns);

  // Takes a row that stands at `position` into account: the first, or a further one.
  void Begin(std::span<const double> row, int position);
  void Add(std::span<const double> row, int position);

  // Turns the sums of `rows` rows into averages.
  void Finish(int rows);

  std::vector<double> DyaMaxima;
  std::vector<double> DyaMinima;
  std::vector<double> DyaAverages;
  std::vector<int> DyaMaximumPositions;  // positions in the ring
  std::vector<int> DyaMinimumPositions;
};

}  // namespace kiln
