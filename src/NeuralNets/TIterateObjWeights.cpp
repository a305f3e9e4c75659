#include "NeuralNets/TIterateObjWeights.h"

#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

TIterateObjGetNumWeights::TIterateObjGetNumWeights(TMask val) : val_(val) {
  CheckSelector(val);
}

void TIterateObjGetNumWeights::Read(const TConnection& connection) {
  if (connection.IsSelected(val_)) ++count_;
}

TIterateObjGetWeights::TIterateObjGetWeights(std::vector<double>& weights, TMask val)
    : weights_(weights), val_(val) {
  CheckSelector(val);
}

void TIterateObjGetWeights::Read(const TConnection& connection) {
  if (connection.IsSelected(val_)) weights_.push_back(connection.weight);
}

TIterateObjSetWeights::TIterateObjSetWeights(std::span<const double> weights, TMask val)
    : weights_(weights), val_(val) {
  CheckSelector(val);
}

void TIterateObjSetWeights::Connection(TConnection& connection) {
  if (!connection.IsSelected(val_)) return;
  Assert(!weights_.empty(), "n<numweights", "NeuralNets/TIterateObjWeights");
  connection.weight = weights_.front();
  weights_ = weights_.subspan(1);
}

void TIterateObjRandomize::Connection(TConnection& connection) {
  if (connection.Exists()) connection.weight = Random::Uniform(lower_, upper_);
}

void TIterateObjSaveWeights::Read(const TConnection& connection) {
  if (connection.Exists()) sink_(connection);
}

}  // namespace kiln
