#include "NeuralNets/Maps/TMapScore.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/Maps/TNearestSearch.h"

namespace kiln {

namespace {

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
  const TPrototypeTiles tiles(map.Prototypes(), map.NumInputs());
  TNearestSearch(tiles).ForEachRow<TNearestUnits>(
      set, [&](const DataRow&, const TNearestUnits& nearest) {
        score.quantisation += std::sqrt(nearest.first.distance);
        const bool has_second = nearest.second.distance < TNearestUnits::kNowhere;
        if (has_second && !AreNeighbours(map.Grid(), nearest.first.unit, nearest.second.unit)) {
          score.topographic += 1.0;
        }
      });
  score.quantisation /= set.DataRows();
  score.topographic /= set.DataRows();
  return score;
}

}  // namespace kiln
