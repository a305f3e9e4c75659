#include "NeuralNets/Training/TValidation.h"

#include <utility>

#include "DataObject/Data.h"
#include "Shared/TException.h"

namespace kiln {

TValidation::TValidation(const TBasicNetwork& network, const TValidationSet& set,
                         std::unique_ptr<TErrorObj> error)
    : copy_(network.Clone()),
      recall_(*copy_),
      data_(set.data),
      error_(std::move(error)),
      weights_(network),
      least_weights_(network),
      patience_(set.patience) {
  network.CheckFits(data_, "TValidation::TValidation");
  if (data_.DataRows() == 0) {
    throw TException("the data set has no rows", "Invalid Parameter", "TValidation::TValidation");
  }
}

double TValidation::Measure(const TBasicNetwork& network) {
  weights_.CopyFrom(network);
  weights_.CopyTo(*copy_);
  error_->Reset();
  const double error = recall_.Error(data_, *error_);
  measured_ = true;
  ++since_least_;
  if (error < least_error_) {
    least_error_ = error;
    since_least_ = 0;
    std::swap(weights_, least_weights_);
  }
  return error;
}

void TValidation::Restore(TBasicNetwork& network) const {
  if (least_error_ < std::numeric_limits<double>::infinity()) least_weights_.CopyTo(network);
}

}  // namespace kiln
