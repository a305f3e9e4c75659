#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/TCacheLine.h"
#include "Shared/TPlacedVector.h"

namespace kiln {

class TBasicNetwork;

// A number for each weight of a network: its gradient, its last change, or what else a method of
// training keeps for it. The numbers of a block stand as its weights do; blocks follow one another
// in the one order of weights, each from the next cache line on.
class TWeightBuffer {
 public:
  // Zeros. The shape of the network must not change while the buffer is used with it.
  explicit TWeightBuffer(const TBasicNetwork& network);

  // The numbers of a block; none where the layers are not connected. REQUIRES: there are such
  // layers.
  std::span<double> Block(std::size_t to, std::size_t from) {
    const TPlace& place = places_[from * layers_ + to];
    return Values().subspan(place.first, place.size);
  }
  std::span<const double> Block(std::size_t to, std::size_t from) const {
    const TPlace& place = places_[from * layers_ + to];
    return Values().subspan(place.first, place.size);
  }

  // All numbers, with places between the blocks that belong to no weight, and the extra number as
  // the last. Buffers of networks of one shape have the same places.
  std::span<double> Values();
  std::span<const double> Values() const;

  // A number that goes wherever the others go, and belongs to no weight.
  double& Extra() { return Values().back(); }

  // Sets all numbers to 0.
  void Clear();

  // Copy the numbers of all weights from or to a network of the shape. REQUIRES: for CopyTo, a 0
  // for each absent connection.
  void CopyFrom(const TBasicNetwork& network);
  void CopyTo(TBasicNetwork& network) const;

 private:
  struct TPlace {
    std::size_t first;
    std::size_t size;
  };

  std::size_t layers_;
  std::vector<TPlace> places_;  // of each block
  TPlacedVector<TCacheLine> lines_;
};

}  // namespace kiln
