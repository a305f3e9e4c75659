#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kiln {

// How the units of a map stand: a grid of any number of dimensions. Units are numbered from 0 with
// the last coordinate the fastest, so that (p0, p1, p2) is (p0 size1 + p1) size2 + p2.
class TMapGrid {
 public:
  // Throws TAssertion "dims != 0" without a size, and TException unless every size is at least 1
  // and the grid has no more units than a layer can have neurons.
  explicit TMapGrid(std::vector<int> sizes);

  std::span<const int> Sizes() const { return sizes_; }  // one a dimension
  std::size_t NumDimensions() const { return sizes_.size(); }
  std::size_t NumUnits() const { return units_; }

  // REQUIRES: a coordinate for each dimension, each at least 0 and below the size.
  std::size_t UnitAt(std::span<const int> coordinates) const;

  // REQUIRES: unit < NumUnits(), room for a coordinate of each dimension.
  void CoordinatesOf(std::size_t unit, std::span<int> coordinates) const;

 private:
  std::vector<int> sizes_;
  std::size_t units_;
};

}  // namespace kiln
