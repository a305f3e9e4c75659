#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

// The unit of a map whose prototype is nearest to a pattern.
struct TWinner {
  // A unit at this squared distance or beyond does not win.
  static constexpr double kFarthest = 1e30;

  std::size_t unit = 0;
  double distance = kFarthest;  // squared
};

// A working copy of the prototypes of a map, laid out for the search of winners among all units at
// once: see TKernels::nearest.
class TPrototypeTiles {
 public:
  // Of the units of a tile.
  using TDistances = std::array<double, TKernels::kTile>;

  // Copies rows of `inputs` values. REQUIRES: inputs > 0.
  TPrototypeTiles(std::span<const double> prototypes, std::size_t inputs);

  // The unit nearest to a pattern, the first of several.
  // Throws TAssertion "bestsofar >= 0" when no distance is a number below kFarthest.
  // REQUIRES: a value for each input.
  TWinner Nearest(std::span<const double> pattern) const;

  std::size_t Units() const { return units_; }
  std::size_t Inputs() const { return inputs_; }
  std::size_t Tiles() const { return tiles_; }

  // The squares of all prototypes; NaN in what is left of the last tile.
  std::vector<double> Squares() const;

  // See TKernels::least_scores. REQUIRES: `least` has room for the scores of all groups.
  void LeastScores(std::span<const double> halves, std::span<const double* const> patterns,
                   std::span<double> least) const;

  // Makes a unit of the tiles first..last-1 the winner if it is nearer than the one so far; at
  // equal distances that one stays. REQUIRES: the tiles exist; a value for each input.
  void LookThrough(std::size_t first, std::size_t last, std::span<const double> pattern,
                   TWinner& winner) const;

  // The squared distances of the units of a tile, NaN behind the last unit.
  TDistances Distances(std::size_t tile, std::span<const double> pattern) const;

  // Moves the prototypes of units first..last-1 by `rate` of their way to the pattern.
  // REQUIRES: the units exist; a value for each input.
  void Approach(std::size_t first, std::size_t last, std::span<const double> pattern, double rate);

  // Whether each value that is a finite number in `prototypes`, from which the copy was made, is
  // one in the copy.
  bool AreStillFinite(std::span<const double> prototypes) const;

  // Writes the prototypes back as rows. REQUIRES: room for as many as were copied.
  void CopyTo(std::span<double> prototypes) const;

 private:
  std::size_t Place(std::size_t unit, std::size_t input) const;

  std::size_t units_;
  std::size_t inputs_;
  std::size_t tiles_;
  std::vector<double> values_;
};

}  // namespace kiln
