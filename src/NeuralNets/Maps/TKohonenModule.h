#pragma once

#include <functional>
#include <memory>
#include <span>
#include <utility>

#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/Training/TEpochObserver.h"
#include "NeuralNets/Training/TTrainHistory.h"

namespace kiln {

class Data;
class TNeighbourhood;
class TPrototypeTiles;

// Trains a map. Pattern by pattern, the winner w and, with radii, all units around it move towards
// the pattern x by the same share of the way, w += rate (x - w). The neighbourhood is a box that
// reaches r[k] units from the winner along dimension k, as far as the grid goes.
//
// Rate and radii shrink before each epoch, the first one included: rate = a rate and
// radius = (radius - 1) b + 1, whose whole part is r. With b < 1 radii tend to 1. Where r
// is below 0, or the radius not a number, the box is empty and not even the winner moves.
class TKohonenModule {
 public:
  explicit TKohonenModule(std::shared_ptr<TKohonenNetwork> map) : map_(std::move(map)) {}

  const TKohonenNetwork& Map() const { return *map_; }

  // The error of every epoch, as the observer is told it.
  const TTrainHistory& History() const { return history_; }

  // Trains for `epochs` epochs, or until the observer stops it, over all rows from the oldest to
  // the newest. The error that the observer is told is the root of the mean squared difference
  // between the inputs and the winners that they met. `radii`, one a dimension or none, ends as
  // those of the last epoch; with radii each epoch prints its number and a blank.
  //
  // Throws TAssertion "Map -> GetNumInputs() == dimnum" or "dimnum == dimnumber" when the columns
  // of the set or the radii are not as many as the map's inputs or dimensions, and
  // "bestsofar >= 0" when a pattern has no winner (see TKohonenNetwork); TException when a
  // prototype comes to no finite number. No prototype has changed then.
  void Train(const Data& data, double learning_rate, std::span<double> radii, int epochs,
             double rate_factor, double radius_factor, const TEpochObserver& observer = {});

  // The same, but each unit moves once an epoch, towards the mean of the patterns whose winners'
  // boxes hold it (see TMapBatch). The winners are those of the prototypes before the epoch.
  void TrainByBatch(const Data& data, double learning_rate, std::span<double> radii, int epochs,
                    double rate_factor, double radius_factor, const TEpochObserver& observer = {});

 private:
  struct TSchedule {
    double learning_rate;
    double rate_factor;
    std::span<double> radii;
    double radius_factor;
    int epochs;
  };

  // One epoch at a rate. Returns the sum of the squared distances between patterns and winners.
  using TPass =
      std::function<double(double rate, TPrototypeTiles& tiles, TNeighbourhood& neighbourhood)>;

  void Run(const Data& data, const TSchedule& schedule, const TEpochObserver& observer,
           const TPass& pass);

  std::shared_ptr<TKohonenNetwork> map_;
  TTrainHistory history_;
};

}  // namespace kiln
