#include "Tarn/Centres.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace kiln {

namespace {

// Where x meets a membership function.
enum class TSide { kShoulder, kFalling, kRising, kOutside };

TSide SideOf(std::span<const double> centres, std::size_t k, double x) {
  const double centre = centres[k];
  const bool has_left = k > 0;
  const bool has_right = k + 1 < centres.size();
  if (!has_left && x <= centre) return TSide::kShoulder;
  if (!has_right && x >= centre) return TSide::kShoulder;
  if (has_right && centre <= x && x < centres[k + 1]) return TSide::kFalling;
  if (has_left && x <= centre && centres[k - 1] < x) return TSide::kRising;
  return TSide::kOutside;
}

bool IsFrozen(const TMask* masks, std::size_t k) {
  return masks != nullptr && (masks[k] & FMaskTrainable) == 0;
}

// Puts the trainable centres first..last-1 in order; the centres beside them, where there are any,
// are frozen. A frozen NaN drops out of the comparisons, and a trainable NaN becomes the least
// value that its centre may have.
void OrderBetween(std::span<double> centres, std::span<const double> distances, std::size_t first,
                  std::size_t last) {
  const double* left = first > 0 ? &centres[first - 1] : nullptr;
  const double* right = last < centres.size() ? &centres[last] : nullptr;
  double lower = left ? std::max(0.0, *left) : 0.0;
  double upper = right ? std::min(1.0, *right) : 1.0;
  if (right) lower = std::min(lower, *right);
  if (left) upper = std::max(upper, *left);
  const std::size_t first_gap = left ? first - 1 : first;
  const std::size_t last_gap = right ? last : last - 1;
  const auto gaps = distances.subspan(first_gap, last_gap - first_gap);
  const double wanted = std::accumulate(gaps.begin(), gaps.end(), 0.0);
  const double room = std::max(0.0, upper - lower);
  const double share = wanted > room ? room / wanted : 1.0;

  double least = left ? std::max(lower, *left + share * distances[first - 1]) : lower;
  for (std::size_t k = first; k < last; ++k) {
    if (!(centres[k] >= least)) centres[k] = least;
    if (k + 1 < centres.size()) least = centres[k] + share * distances[k];
  }
  double most = right ? std::min(upper, *right - share * distances[last - 1]) : upper;
  for (std::size_t k = last; k-- > first;) {
    centres[k] = std::max(lower, std::min(centres[k], most));
    if (k > 0) most = centres[k] - share * distances[k - 1];
  }
}

// The distance of a centre from its nearest neighbour.
double GapAt(std::span<const double> centres, std::size_t k) {
  const std::size_t last = centres.size() - 1;
  const double left = std::abs(k > 0 ? centres[k] - centres[k - 1] : centres[1] - centres[0]);
  const double right = k < last ? std::abs(centres[k + 1] - centres[k]) : left;
  return std::min(left, right);
}

}  // namespace

void PlaceCentresEvenly(std::span<double> centres) {
  const auto last = static_cast<double>(centres.size() - 1);
  for (std::size_t k = 0; k < centres.size(); ++k) centres[k] = static_cast<double>(k) / last;
}

void MeasureCentreDistances(std::span<const double> centres, std::span<double> distances) {
  const std::size_t last = centres.size() - 1;
  const double most = kCentreDistance / static_cast<double>(last);
  for (std::size_t k = 0; k < last; ++k) {
    distances[k] = std::clamp(centres[k + 1] - centres[k], 0.0, most);
  }
  distances[last] = 0.0;
}

void MeasureCentreGaps(std::span<const double> centres, std::span<double> gaps) {
  for (std::size_t k = 0; k < centres.size(); ++k) gaps[k] = GapAt(centres, k);
}

void ScaleCentreGradients(std::span<const double> centres, std::span<double> gradients) {
  for (std::size_t k = 0; k < centres.size(); ++k) {
    const double gap = GapAt(centres, k);
    gradients[k] *= gap * gap;
  }
}

void LimitCentreSteps(std::span<const double> before, std::span<double> centres, double share) {
  const std::size_t last = centres.size() - 1;
  for (std::size_t k = 0; k <= last; ++k) {
    const double from_left = k > 0 ? before[k] - before[k - 1] : before[1] - before[0];
    const double to_right = k < last ? before[k + 1] - before[k] : from_left;
    const double least = before[k] - share * std::abs(from_left);
    const double most = before[k] + share * std::abs(to_right);
    centres[k] = std::min(std::max(centres[k], least), most);
  }
}

void PutCentresInOrder(std::span<double> centres, std::span<const double> distances,
                       const TMask* masks) {
  for (std::size_t first = 0; first < centres.size(); ++first) {
    std::size_t last = first;
    while (last < centres.size() && !IsFrozen(masks, last)) ++last;
    if (last > first) OrderBetween(centres, distances, first, last);
    first = last;
  }
}

double Membership(std::span<const double> centres, std::size_t k, double x) {
  const double centre = centres[k];
  switch (SideOf(centres, k, x)) {
    case TSide::kShoulder:
      return 1.0;
    case TSide::kFalling:
      return 1.0 - (x - centre) / (centres[k + 1] - centre);
    case TSide::kRising:
      return 1.0 - (centre - x) / (centre - centres[k - 1]);
    case TSide::kOutside:
      break;
  }
  return 0.0;
}

void AddCentreGradients(std::span<const double> centres, std::size_t k, double x, double error,
                        std::span<double> gradients) {
  const double centre = centres[k];
  const TSide side = SideOf(centres, k, x);
  if (side == TSide::kFalling) {
    const double right = centres[k + 1];
    const double slope = error / ((right - centre) * (right - centre));
    gradients[k] += slope * (right - x);
    gradients[k + 1] += slope * (x - centre);
  } else if (side == TSide::kRising) {
    const double left = centres[k - 1];
    const double slope = error / ((centre - left) * (centre - left));
    gradients[k] -= slope * (x - left);
    gradients[k - 1] -= slope * (centre - x);
  }
}

}  // namespace kiln
