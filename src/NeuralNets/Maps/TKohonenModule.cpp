#include "NeuralNets/Maps/TKohonenModule.h"

#include <cmath>
#include <optional>
#include <string>

#include "DataObject/Data.h"
#include "NeuralNets/Maps/TMapBatch.h"
#include "NeuralNets/Maps/TNeighbourhood.h"
#include "NeuralNets/Maps/TPrototypeTiles.h"
#include "Shared/Say.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

// Users quote this source for whatever a map refuses.
constexpr char kModule[] = "NeuralNets/TKohonenNetwork";

[[noreturn]] void FailNumber(int epoch) {
  throw TException("the map has no finite numbers after epoch " + std::to_string(epoch),
                   "Invalid Parameter", "TKohonenModule::Train");
}

// One pass over the set, pattern by pattern. Returns the sum of the squared distances between
// patterns and winners.
double RunPatterns(const Data& data, double rate, TPrototypeTiles& tiles,
                   TNeighbourhood& neighbourhood) {
  double sum = 0.0;
  for (int n = 0; n < data.DataRows(); ++n) {
    const std::span<const double> pattern = data.Row(n).Inputs;
    const TWinner winner = tiles.Nearest(pattern);
    sum += winner.distance;
    neighbourhood.ForEachRow(winner.unit, [&](std::size_t first, std::size_t last) {
      tiles.Approach(first, last, pattern, rate);
    });
  }
  return sum;
}

}  // namespace

void TKohonenModule::Train(const Data& data, double learning_rate, std::span<double> radii,
                           int epochs, double rate_factor, double radius_factor,
                           const TEpochObserver& observer) {
  Run(data, {learning_rate, rate_factor, radii, radius_factor, epochs}, observer,
      [&](double rate, TPrototypeTiles& tiles, TNeighbourhood& neighbourhood) {
        return RunPatterns(data, rate, tiles, neighbourhood);
      });
}

void TKohonenModule::TrainByBatch(const Data& data, double learning_rate, std::span<double> radii,
                                  int epochs, double rate_factor, double radius_factor,
                                  const TEpochObserver& observer) {
  std::optional<TMapBatch> batch;
  Run(data, {learning_rate, rate_factor, radii, radius_factor, epochs}, observer,
      [&](double rate, TPrototypeTiles& tiles, TNeighbourhood& neighbourhood) {
        if (!batch) batch.emplace(map_->Grid(), data, tiles);
        return batch->RunEpoch(rate, neighbourhood.Radii());
      });
}

void TKohonenModule::Run(const Data& data, const TSchedule& schedule,
                         const TEpochObserver& observer, const TPass& pass) {
  const auto& [learning_rate, rate_factor, radii, radius_factor, epochs] = schedule;
  const TMapGrid& grid = map_->Grid();
  Assert(static_cast<std::size_t>(data.Inputs()) == map_->NumInputs(),
         "Map -> GetNumInputs() == dimnum", kModule);
  Assert(radii.empty() || radii.size() == grid.NumDimensions(), "dimnum == dimnumber", kModule);
  TPrototypeTiles tiles(map_->Prototypes(), map_->NumInputs());
  TNeighbourhood neighbourhood(grid);
  THistoryOfCall history(history_, epochs);
  const int epochs_before = history_.Epochs();
  double rate = learning_rate;
  for (int epoch = 0; epoch < epochs; ++epoch) {
    if (!radii.empty()) {
      Say(std::to_string(epoch) + ' ');
      for (double& radius : radii) radius = (radius - 1.0) * radius_factor + 1.0;
      neighbourhood.SetRadii(radii);
    }
    rate *= rate_factor;
    const double sum = pass(rate, tiles, neighbourhood);
    const double error = std::sqrt(sum / (static_cast<double>(data.DataRows()) * data.Inputs()));
    if (!std::isfinite(error)) FailNumber(epoch + 1);
    history_.Add(error);
    if (observer && !observer(epoch, error)) break;
  }
  if (!tiles.AreStillFinite(map_->Prototypes())) FailNumber(history_.Epochs() - epochs_before);
  tiles.CopyTo(map_->Prototypes());
  history.End();
}

}  // namespace kiln
