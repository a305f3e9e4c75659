#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Maps/TMapGrid.h"
#include "NeuralNets/Maps/TPrototypeTiles.h"

namespace kiln {

class Data;

// Trains a map by whole sets: the winners of all rows are found first, then each prototype w moves
// towards the mean of the rows whose winner's box holds its unit, w += rate (mean - w). A unit in
// no such box stays. A box is that of TNeighbourhood.
//
// Winners, sums and moves are shared out to the team. Each number is summed up in an order that
// depends on the set and the grid alone.
class TMapBatch {
 public:
  // REQUIRES: all of these outlive this object, and fit each other.
  TMapBatch(const TMapGrid& grid, const Data& data, TPrototypeTiles& tiles);

  // Carries out one epoch with a box that reaches radii[k] units along dimension k, and returns the
  // sum of the squared distances between rows and winners. A radius below 0 moves nothing.
  // Throws TAssertion "bestsofar >= 0" when a row has no winner; no prototype has moved then.
  double RunEpoch(double rate, std::span<const int> radii);

 private:
  void SortRowsByWinner();
  void SumRowsOfWinners();

  // Replaces the sums of each unit by those of the units that stand up to `radius` places from it
  // along a dimension of `size` units, which lie `inner` numbers apart.
  void SumNeighbours(std::size_t size, std::size_t inner, std::size_t radius);

  void Move(double rate);

  // The columns first..last-1 of `size` sums that begin at number `base`.
  struct TStrip {
    std::size_t base;
    std::size_t size;
    std::size_t inner;
    std::size_t first;
    std::size_t last;
  };
  void SumStrip(const TStrip& strip, std::size_t radius);

  const TMapGrid& grid_;
  const Data& data_;
  TPrototypeTiles& tiles_;
  std::size_t width_;  // numbers a unit: the sums of the inputs, then how many rows these are of
  std::vector<TWinner> winners_;     // one a row
  std::vector<std::size_t> starts_;  // of the rows of each winner in rows_
  std::vector<int> rows_;            // by winner, the oldest first
  std::vector<double> sums_;         // units x width_
  std::vector<double> forward_;      // running sums within stretches of units
  std::vector<double> backward_;     // likewise from their ends
};

}  // namespace kiln
