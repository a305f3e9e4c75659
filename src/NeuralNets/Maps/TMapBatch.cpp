#include "NeuralNets/Maps/TMapBatch.h"

#include <algorithm>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TNearestSearch.h"
#include "Shared/TTeam.h"

namespace kiln {

namespace {

constexpr std::size_t kTile = TKernels::kTile;
constexpr std::size_t kUnitsOfPiece = 8 * kTile;  // whole tiles, which no two workers write to
constexpr std::size_t kColumnsOfPiece = 256;

std::size_t PiecesOf(std::size_t count, std::size_t of_piece) {
  return (count + of_piece - 1) / of_piece;
}

// Calls visit(unit) for all units, piece by piece; one takes about so many operations.
template <typename TVisit>
void ForEachUnit(std::size_t units, double operations, const TVisit& visit) {
  const std::size_t pieces = PiecesOf(units, kUnitsOfPiece);
  const std::size_t workers =
      TTeam::WorkersFor(pieces, operations * static_cast<double>(kUnitsOfPiece));
  TTeam::ForEach(pieces, workers, [&](std::size_t piece, std::size_t) {
    const std::size_t last = std::min((piece + 1) * kUnitsOfPiece, units);
    for (std::size_t unit = piece * kUnitsOfPiece; unit < last; ++unit) visit(unit);
  });
}

}  // namespace

TMapBatch::TMapBatch(const TMapGrid& grid, const Data& data, TPrototypeTiles& tiles)
    : grid_(grid),
      data_(data),
      tiles_(tiles),
      width_(tiles.Inputs() + 1),
      winners_(static_cast<std::size_t>(data.DataRows())),
      starts_(grid.NumUnits() + 1),
      rows_(winners_.size()),
      sums_(grid.NumUnits() * width_),
      forward_(sums_.size()),
      backward_(sums_.size()) {}

double TMapBatch::RunEpoch(double rate, std::span<const int> radii) {
  std::ranges::fill(winners_, TWinner());
  TNearestSearch(tiles_).FindWinners(data_, winners_);
  double distances = 0.0;
  for (const TWinner& winner : winners_) distances += winner.distance;
  if (std::ranges::any_of(radii, [](int radius) { return radius < 0; })) return distances;
  SortRowsByWinner();
  SumRowsOfWinners();
  std::size_t inner = width_;
  for (std::size_t k = radii.size(); k-- > 0;) {
    const auto size = static_cast<std::size_t>(grid_.Sizes()[k]);
    if (radii[k] > 0) SumNeighbours(size, inner, static_cast<std::size_t>(radii[k]));
    inner *= size;
  }
  Move(rate);
  return distances;
}

void TMapBatch::SortRowsByWinner() {
  std::ranges::fill(starts_, 0);
  for (const TWinner& winner : winners_) ++starts_[winner.unit];
  std::size_t end = 0;
  for (std::size_t& start : starts_) start = end += start;
  for (std::size_t n = winners_.size(); n-- > 0;) {
    rows_[--starts_[winners_[n].unit]] = static_cast<int>(n);
  }
}

void TMapBatch::SumRowsOfWinners() {
  const double rows_of_unit =
      static_cast<double>(rows_.size()) / static_cast<double>(grid_.NumUnits());
  const double operations = (1.0 + rows_of_unit) * static_cast<double>(width_);
  ForEachUnit(grid_.NumUnits(), operations, [&](std::size_t unit) {
    const std::span sums = std::span(sums_).subspan(unit * width_, width_);
    std::ranges::fill(sums, 0.0);
    for (std::size_t at = starts_[unit]; at < starts_[unit + 1]; ++at) {
      const std::span<const double> inputs = data_.Row(rows_[at]).Inputs;
      for (std::size_t i = 0; i < inputs.size(); ++i) sums[i] += inputs[i];
    }
    sums.back() = static_cast<double>(starts_[unit + 1] - starts_[unit]);
  });
}

void TMapBatch::SumNeighbours(std::size_t size, std::size_t inner, std::size_t radius) {
  const std::size_t strips = PiecesOf(inner, kColumnsOfPiece);
  const std::size_t pieces = sums_.size() / (size * inner) * strips;
  const double operations = 3.0 * static_cast<double>(size * std::min(inner, kColumnsOfPiece));
  TTeam::ForEach(pieces, TTeam::WorkersFor(pieces, operations),
                 [&](std::size_t piece, std::size_t) {
                   const std::size_t first = piece % strips * kColumnsOfPiece;
                   const std::size_t last = std::min(first + kColumnsOfPiece, inner);
                   SumStrip({piece / strips * size * inner, size, inner, first, last}, radius);
                 });
}

// The units are cut into stretches as long as a whole neighbourhood, 2 radius + 1. Then every
// neighbourhood is the end of a stretch and the beginning of the next one, and with running sums
// from both ends of each stretch it takes one addition, however far it reaches. Nothing is ever
// subtracted, so that no digits are lost.
void TMapBatch::SumStrip(const TStrip& strip, std::size_t radius) {
  const std::size_t length = 2 * radius + 1;
  const auto [base, size, inner, first, last] = strip;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t at = base + i * inner;
    const bool begins = i % length == 0;
    for (std::size_t c = at + first; c < at + last; ++c) {
      forward_[c] = begins ? sums_[c] : forward_[c - inner] + sums_[c];
    }
  }
  for (std::size_t i = size; i-- > 0;) {
    const std::size_t at = base + i * inner;
    const bool ends = i + 1 == size || (i + 1) % length == 0;
    for (std::size_t c = at + first; c < at + last; ++c) {
      backward_[c] = ends ? sums_[c] : sums_[c] + backward_[c + inner];
    }
  }
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t lowest = i < radius ? 0 : i - radius;
    const std::size_t highest = std::min(i + radius, size - 1);
    const bool in_one = lowest / length == highest / length;
    const bool from_start = in_one && lowest % length == 0;
    for (std::size_t c = first; c < last; ++c) {
      const double end = backward_[base + lowest * inner + c];
      const double beginning = forward_[base + highest * inner + c];
      sums_[base + i * inner + c] = from_start ? beginning : in_one ? end : end + beginning;
    }
  }
}

void TMapBatch::Move(double rate) {
  const double operations = static_cast<double>(kTile * tiles_.Inputs());
  ForEachUnit(grid_.NumUnits(), operations, [&](std::size_t unit) {
    const std::span sums = std::span(sums_).subspan(unit * width_, width_);
    const double rows = sums.back();
    if (rows == 0.0) return;
    const std::span mean = sums.first(tiles_.Inputs());
    for (double& value : mean) value /= rows;
    tiles_.Approach(unit, unit + 1, mean, rate);
  });
}

}  // namespace kiln
