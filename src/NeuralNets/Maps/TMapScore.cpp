#include "NeuralNets/Maps/TMapScore.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

constexpr double kFar = std::numeric_limits<double>::infinity();

struct TNearUnit {
  std::size_t unit = 0;
  double distance = kFar;  // squared
};

// The two units nearest to a pattern; of equals the lower ones.
struct TNearestUnits {
  TNearestUnits(const TKohonenNetwork& map, std::span<const double> pattern) {
    for (std::size_t unit = 0; unit < map.Grid().NumUnits(); ++unit) {
      const double* prototype = map.Prototype(unit).data();
      double distance = 0.0;
      for (const double x : pattern) {
        const double difference = x - *prototype++;
        distance += difference * difference;
      }
      if (distance < first.distance) {
        second = first;
        first = {unit, distance};
      } else if (distance < second.distance) {
        second = {unit, distance};
      }
    }
    Assert(first.distance < kFar, "bestsofar >= 0");
  }

  TNearUnit first;
  TNearUnit second;
};

bool AreNeighbours(const TMapGrid& grid, std::size_t unit, std::size_t other) {
  std::vector<int> here(grid.NumDimensions());
  std::vector<int> there(grid.NumDimensions());
  grid.CoordinatesOf(unit, here);
  grid.CoordinatesOf(other, there);
  return std::ranges::equal(here, there, [](int a, int b) { return std::abs(a - b) <= 1; });
}

}  // namespace

TMapScore MeasureMap(const TKohonenNetwork& map, const Data& set) {
  map.CheckInputsFit(set, "MeasureMap");
  TMapScore score = {0.0, 0.0};
  for (int n = 0; n < set.DataRows(); ++n) {
    const TNearestUnits nearest(map, set.Row(n).Inputs);
    score.quantisation += std::sqrt(nearest.first.distance);
    const bool has_second = nearest.second.distance < kFar;
    if (has_second && !AreNeighbours(map.Grid(), nearest.first.unit, nearest.second.unit)) {
      score.topographic += 1.0;
    }
  }
  score.quantisation /= set.DataRows();
  score.topographic /= set.DataRows();
  return score;
}

}  // namespace kiln
