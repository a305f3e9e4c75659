#include "NeuralNets/Maps/TMapGrid.h"

#include <string>
#include <utility>

#include "NeuralNets/TBasicLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Users quote this source for whatever a map refuses.
constexpr char kModule[] = "NeuralNets/TKohonenNetwork";

[[noreturn]] void FailSize(const std::string& message) {
  throw TException(message, "Bad Parameter", "TKohonenNetwork::TKohonenNetwork");
}

std::size_t CheckedUnits(std::span<const int> sizes) {
  Assert(!sizes.empty(), "dims != 0", kModule);
  std::size_t units = 1;
  for (const int size : sizes) {
    if (size < 1) FailSize("a map dimension of " + std::to_string(size) + " units is less than 1");
    // Neither factor exceeds 2^31, so the product stays within 64 bits.
    units *= static_cast<std::size_t>(size);
    if (units > TBasicLayer::kMaxNeurons) {
      FailSize("a map of more than " + std::to_string(TBasicLayer::kMaxNeurons) + " units");
    }
  }
  return units;
}

}  // namespace

TMapGrid::TMapGrid(std::vector<int> sizes)
    : sizes_(std::move(sizes)), units_(CheckedUnits(sizes_)) {}

std::size_t TMapGrid::UnitAt(std::span<const int> coordinates) const {
  std::size_t unit = 0;
  for (std::size_t k = 0; k < sizes_.size(); ++k) {
    unit = unit * static_cast<std::size_t>(sizes_[k]) + static_cast<std::size_t>(coordinates[k]);
  }
  return unit;
}

void TMapGrid::CoordinatesOf(std::size_t unit, std::span<int> coordinates) const {
  for (std::size_t k = sizes_.size(); --k > 0;) {
    const auto size = static_cast<std::size_t>(sizes_[k]);
    coordinates[k] = static_cast<int>(unit % size);
    unit /= size;
  }
  coordinates[0] = static_cast<int>(unit);
}

}  // namespace kiln
