#include "NeuralNets/Maps/TPrototypeTiles.h"

#include <cmath>
#include <limits>

#include "NeuralNets/Kernels/Kernels.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// Users quote this source for whatever a map refuses.
constexpr char kModule[] = "NeuralNets/TKohonenNetwork";

constexpr std::size_t kTile = TKernels::kTile;

}  // namespace

TPrototypeTiles::TPrototypeTiles(std::span<const double> prototypes, std::size_t inputs)
    : units_(prototypes.size() / inputs),
      inputs_(inputs),
      tiles_((units_ + kTile - 1) / kTile),
      values_(tiles_ * kTile * inputs, std::numeric_limits<double>::quiet_NaN()) {
  for (std::size_t unit = 0; unit < units_; ++unit) {
    for (std::size_t i = 0; i < inputs_; ++i) {
      values_[Place(unit, i)] = prototypes[unit * inputs_ + i];
    }
  }
}

bool TPrototypeTiles::AreStillFinite(std::span<const double> prototypes) const {
  for (std::size_t unit = 0; unit < units_; ++unit) {
    for (std::size_t i = 0; i < inputs_; ++i) {
      const bool is_finite = std::isfinite(values_[Place(unit, i)]);
      if (!is_finite && std::isfinite(prototypes[unit * inputs_ + i])) return false;
    }
  }
  return true;
}

void TPrototypeTiles::CopyTo(std::span<double> prototypes) const {
  for (std::size_t unit = 0; unit < units_; ++unit) {
    for (std::size_t i = 0; i < inputs_; ++i) {
      prototypes[unit * inputs_ + i] = values_[Place(unit, i)];
    }
  }
}

std::size_t TPrototypeTiles::Place(std::size_t unit, std::size_t input) const {
  return (unit / kTile * inputs_ + input) * kTile + unit % kTile;
}

TWinner TPrototypeTiles::Nearest(std::span<const double> pattern) const {
  TWinner winner;
  const std::ptrdiff_t bestsofar =
      Kernels().nearest(values_.data(), tiles_, inputs_, pattern.data(), &winner.distance);
  Assert(bestsofar >= 0, "bestsofar >= 0", kModule);
  winner.unit = static_cast<std::size_t>(bestsofar);
  return winner;
}

void TPrototypeTiles::Approach(std::size_t first, std::size_t last, std::span<const double> pattern,
                               double rate) {
  Kernels().approach(values_.data(), inputs_, first, last, pattern.data(), rate);
}

}  // namespace kiln
