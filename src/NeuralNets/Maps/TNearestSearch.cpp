#include "NeuralNets/Maps/TNearestSearch.h"

#include <array>

#include "Shared/TAssertion.h"
#include "Shared/TTeam.h"

namespace kiln {

namespace {

// Users quote this source for whatever a map refuses.
constexpr char kModule[] = "NeuralNets/TKohonenNetwork";

constexpr std::size_t kTile = TKernels::kTile;
constexpr std::size_t kGroup = TKernels::kGroup;

// Smaller maps are searched as fast without a product.
constexpr std::size_t kUnitsForProduct = 256;

// Squares beyond this might overflow when they are put together.
constexpr double kLargestSquare = 1e300;

// --- One winner ------------------------------------------------------------------------------

double LeastOf(std::span<const double> scores) {
  std::array<double, 8> least = {};  // that none waits for the one before
  least.fill(std::numeric_limits<double>::infinity());
  std::size_t i = 0;
  for (; i + least.size() <= scores.size(); i += least.size()) {
    for (std::size_t k = 0; k < least.size(); ++k) least[k] = std::min(least[k], scores[i + k]);
  }
  for (; i < scores.size(); ++i) least[0] = std::min(least[0], scores[i]);
  return *std::ranges::min_element(least);
}

// The least score of a group in which the nearest unit of all would be found but for rounding.
double ScoreToReach(std::span<const double> least, const TWinner&) {
  return LeastOf(least);
}

void LookThrough(const TPrototypeTiles& tiles, std::size_t first, std::size_t last,
                 std::span<const double> pattern, TWinner& winner) {
  tiles.LookThrough(first, last, pattern, winner);
}

bool IsFound(const TWinner& winner) {
  return winner.distance < TWinner::kFarthest;
}

// --- Two units -------------------------------------------------------------------------------

// Two groups reach the second least score, so two units do.
double ScoreToReach(std::span<const double> least, const TNearestUnits&) {
  double first = std::numeric_limits<double>::infinity();
  double second = first;
  for (const double score : least) {
    second = std::min(second, std::max(first, score));
    first = std::min(first, score);
  }
  return second;
}

void LookThrough(const TPrototypeTiles& tiles, std::size_t first, std::size_t last,
                 std::span<const double> pattern, TNearestUnits& nearest) {
  for (std::size_t tile = first; tile < last; ++tile) {
    const auto distances = tiles.Distances(tile, pattern);
    for (std::size_t k = 0; k < kTile; ++k) {
      if (distances[k] < nearest.first.distance) {
        nearest.second = nearest.first;
        nearest.first = {tile * kTile + k, distances[k]};
      } else if (distances[k] < nearest.second.distance) {
        nearest.second = {tile * kTile + k, distances[k]};
      }
    }
  }
}

bool IsFound(const TNearestUnits& nearest) {
  return nearest.first.distance < TNearestUnits::kNowhere;
}

}  // namespace

TNearestSearch::TNearestSearch(const TPrototypeTiles& tiles)
    : tiles_(tiles),
      groups_((tiles.Tiles() + kGroup - 1) / kGroup),
      by_product_(tiles.Units() >= kUnitsForProduct) {
  if (!by_product_) return;
  halves_ = tiles.Squares();
  for (double& half : halves_) {
    largest_square_ = half > largest_square_ ? half : largest_square_;
    half *= 0.5;
  }
}

// With n inputs, roundings of u = 2^-53 and squares X of the pattern and W of the largest
// prototype, in units of u and but for its square:
// - Two scores, each a sum of n + 1 terms of which one is a sum of n, are off by at most
//   (2n + 2) (X/2 + W) each.
// - Of two distances that compare as d <= d', each a sum of n squares of differences, d may really
//   exceed d' by (n + 2) (d + d'), where d + d' <= 4 (X + W). Scores are halves of distances.
// These are less than (6n + 8) (X + W), and the rest to (8n + 16) (X + W) covers what has been left
// out here, in X, in W and in the sum to which the slack is added. Where numbers are so small that
// their products lose digits, or all of them, each of at most 4n + 2 roundings is off by half of
// the smallest number at most.
double TNearestSearch::Slack(std::span<const double> pattern) const {
  double square = 0.0;
  for (const double x : pattern) square += x * x;
  const double squares = square + largest_square_;
  if (!(squares < kLargestSquare)) return std::numeric_limits<double>::infinity();
  constexpr double kRounding = std::numeric_limits<double>::epsilon() / 2.0;
  constexpr double kSmallest = std::numeric_limits<double>::denorm_min();
  const double roundings = 8.0 * static_cast<double>(pattern.size()) + 16.0;
  return roundings * (kRounding * squares + kSmallest);
}

void TNearestSearch::FindWinners(const Data& set, std::span<TWinner> winners) const {
  Find(set, 0, winners, [] {});
}

template <typename TFound>
void TNearestSearch::Find(const Data& set, std::size_t first, std::span<TFound> found,
                          void (*before_piece)()) const {
  const std::size_t pieces = (found.size() + kRowsOfPiece - 1) / kRowsOfPiece;
  const double numbers = static_cast<double>(tiles_.Units()) * static_cast<double>(tiles_.Inputs());
  const std::size_t workers =
      TTeam::WorkersFor(pieces, numbers * static_cast<double>(kRowsOfPiece));
  std::vector<TWorkplace> workplaces(workers);
  TTeam::ForEach(pieces, workers, [&](std::size_t piece, std::size_t place) {
    before_piece();
    const std::size_t begin = piece * kRowsOfPiece;
    const std::size_t rows = std::min(kRowsOfPiece, found.size() - begin);
    FindPiece(set, first + begin, found.subspan(begin, rows), workplaces[place]);
  });
}

template <typename TFound>
void TNearestSearch::FindPiece(const Data& set, std::size_t first, std::span<TFound> found,
                               TWorkplace& workplace) const {
  std::array<const double*, kRowsOfPiece> inputs = {};
  for (std::size_t r = 0; r < found.size(); ++r) {
    inputs[r] = set.Row(static_cast<int>(first + r)).Inputs.data();
  }
  const auto patterns = std::span(inputs).first(found.size());
  if (by_product_ && !workplace.is_crowded) {
    FindByProduct(patterns, found, workplace);
  } else {
    for (std::size_t r = 0; r < found.size(); ++r) {
      LookThrough(tiles_, 0, tiles_.Tiles(), {patterns[r], tiles_.Inputs()}, found[r]);
    }
  }
  Assert(std::ranges::all_of(found, [](const TFound& units) { return IsFound(units); }),
         "bestsofar >= 0", kModule);
}

template <typename TFound>
void TNearestSearch::FindByProduct(std::span<const double* const> patterns, std::span<TFound> found,
                                   TWorkplace& workplace) const {
  std::vector<double>& least = workplace.least;
  least.resize(kRowsOfPiece * groups_);
  tiles_.LeastScores(halves_, patterns, least);
  std::size_t looked_into = 0;
  for (std::size_t r = 0; r < found.size(); ++r) {
    const std::span scores = std::span(least).subspan(r * groups_, groups_);
    looked_into += LookIntoGroups({patterns[r], tiles_.Inputs()}, scores, found[r]);
  }
  workplace.is_crowded = looked_into > found.size() * groups_ / 2;
}

template <typename TFound>
std::size_t TNearestSearch::LookIntoGroups(std::span<const double> pattern,
                                           std::span<const double> least, TFound& found) const {
  const double within = ScoreToReach(least, found) + Slack(pattern);
  std::size_t looked_into = 0;
  for (std::size_t group = 0; group < groups_; ++group) {
    if (least[group] > within) continue;
    const std::size_t tile = group * kGroup;
    LookThrough(tiles_, tile, std::min(tile + kGroup, tiles_.Tiles()), pattern, found);
    ++looked_into;
  }
  return looked_into;
}

template void TNearestSearch::Find(const Data&, std::size_t, std::span<TWinner>, void (*)()) const;
template void TNearestSearch::Find(const Data&, std::size_t, std::span<TNearestUnits>,
                                   void (*)()) const;

}  // namespace kiln
