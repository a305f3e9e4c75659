#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kiln {

// The largest and the smallest value that each column of a side of a data set is taken to have:
// what a linear normalisation maps to 1 and to 0.
//
// A side for which no bounds are made (`{}`) is one that is left as it is.
class TColumnBounds {
 public:
  TColumnBounds() = default;

  // The same bounds for each of `columns` columns. REQUIRES: columns >= 0.
  TColumnBounds(int columns, double maximum, double minimum)
      : MbrDyaMaxima(static_cast<std::size_t>(columns), maximum),
        MbrDyaMinima(static_cast<std::size_t>(columns), minimum) {}

  // Bounds for as many columns as there are values. REQUIRES: both have the same number.
  TColumnBounds(std::span<const double> maxima, std::span<const double> minima)
      : MbrDyaMaxima(maxima.begin(), maxima.end()), MbrDyaMinima(minima.begin(), minima.end()) {}

  // Whether there are bounds for `columns` columns, or none at all.
  bool Fits(int columns) const {
    const auto count = static_cast<std::size_t>(columns);
    const bool paired = MbrDyaMaxima.size() == MbrDyaMinima.size();
    return paired && (MbrDyaMaxima.empty() || MbrDyaMaxima.size() == count);
  }

  // Replaces every value v by x = (v - min) / (max - min), clamped to [0, 1]; 0 where max = min.
  // REQUIRES: Fits(values.size()).
  void Normalise(std::span<double> values) const;

  // Replaces every value x by v = x * (max - min) + min. REQUIRES: Fits(values.size()).
  void Denormalise(std::span<double> values) const;

 private:
  std::vector<double> MbrDyaMaxima;
  std::vector<double> MbrDyaMinima;
};

}  // namespace kiln
