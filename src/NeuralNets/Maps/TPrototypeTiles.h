#pragma once

#include <cstddef>
#include <span>
#include <vector>

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
  // Copies rows of `inputs` values. REQUIRES: inputs > 0.
  TPrototypeTiles(std::span<const double> prototypes, std::size_t inputs);

  // The unit nearest to a pattern, the first of several.
  // Throws TAssertion "bestsofar >= 0" when no distance is a number below kFarthest.
  // REQUIRES: a value for each input.
  TWinner Nearest(std::span<const double> pattern) const;

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
