#pragma once

#include <limits>
#include <memory>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TTeamRecall.h"
#include "NeuralNets/Training/TWeightBuffer.h"

namespace kiln {

// A data set that a training looks at after each epoch, or generation, without learning it.
struct TValidationSet {
  const Data& data;
  int patience = 0;  // training ends so many epochs after that with the least error; 0: never
};

// The validation of one call of a trainer: it measures the network after each epoch, in a copy, so
// that training itself goes on as it would without, and keeps the weights with the least error.
class TValidation {
 public:
  // Throws TException when the set has no rows or does not fit the network. The set outlives the
  // validation.
  TValidation(const TBasicNetwork& network, const TValidationSet& set,
              std::unique_ptr<TErrorObj> error);

  // The error of the network as it is now. Takes all memory that it needs in the constructor.
  double Measure(const TBasicNetwork& network);

  // Whether training may go on: the least error is not yet so many epochs ago.
  bool HasPatience() const { return patience_ == 0 || since_least_ < patience_; }

  bool WasMeasured() const { return measured_; }

  // Infinite while no error was a number.
  double LeastError() const { return least_error_; }

  // Whether the latest error is not the least.
  bool IsBeyondLeast() const { return since_least_ > 0; }

  // Gives a network the weights that had the least error; leaves it as it is where there are none.
  void Restore(TBasicNetwork& network) const;

 private:
  std::unique_ptr<TBasicNetwork> copy_;
  TTeamRecall recall_;
  const Data& data_;
  std::unique_ptr<TErrorObj> error_;
  TWeightBuffer weights_;
  TWeightBuffer least_weights_;
  double least_error_ = std::numeric_limits<double>::infinity();
  int patience_;
  int since_least_ = 0;
  bool measured_ = false;
};

}  // namespace kiln
