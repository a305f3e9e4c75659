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

std::vector<double> TPrototypeTiles::Squares() const {
  std::vector<double> squares(tiles_ * kTile, 0.0);
  const double* value = values_.data();
  for (std::size_t tile = 0; tile < tiles_; ++tile) {
    double* const sums = squares.data() + tile * kTile;
    for (std::size_t i = 0; i < inputs_; ++i, value += kTile) {
      for (std::size_t k = 0; k < kTile; ++k) sums[k] += value[k] * value[k];
    }
  }
  return squares;
}

TWinner TPrototypeTiles::Nearest(std::span<const double> pattern) const {
  TWinner winner;
  LookThrough(0, tiles_, pattern, winner);
  Assert(winner.distance < TWinner::kFarthest, "bestsofar >= 0", kModule);
  return winner;
}

void TPrototypeTiles::LookThrough(std::size_t first, std::size_t last,
                                  std::span<const double> pattern, TWinner& winner) const {
  const double* const tiles = values_.data() + first * inputs_ * kTile;
  const std::ptrdiff_t unit =
      Kernels().nearest(tiles, last - first, inputs_, pattern.data(), &winner.distance);
  if (unit >= 0) winner.unit = first * kTile + static_cast<std::size_t>(unit);
}

TPrototypeTiles::TDistances TPrototypeTiles::Distances(std::size_t tile,
                                                       std::span<const double> pattern) const {
  TDistances distances = {};
  Kernels().distances(values_.data() + tile * inputs_ * kTile, inputs_, pattern.data(),
                      distances.data());
  return distances;
}

void TPrototypeTiles::LeastScores(std::span<const double> halves,
                                  std::span<const double* const> patterns,
                                  std::span<double> least) const {
  Kernels().least_scores(values_.data(), tiles_, inputs_, halves.data(), patterns.data(),
                         patterns.size(), least.data());
}

void TPrototypeTiles::Approach(std::size_t first, std::size_t last, std::span<const double> pattern,
                               double rate) {
  Kernels().approach(values_.data(), inputs_, first, last, pattern.data(), rate);
}

}  // namespace kiln
