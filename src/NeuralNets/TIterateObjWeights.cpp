#include "NeuralNets/TIterateObjWeights.h"

#include "Shared/Random.h"

namespace kiln {

TIterateObjGetNumWeights::TIterateObjGetNumWeights(TMask val) : val_(val) {
  CheckSelector(val);
}

void TIterateObjGetNumWeights::Read(const TConnection& connection) {
  if (connection.IsSelected(val_)) ++count_;
}

void TIterateObjRandomize::Connection(TConnection& connection) {
  if (connection.Exists()) connection.weight = Random::Uniform(lower_, upper_);
}

void TIterateObjSaveWeights::Read(const TConnection& connection) {
  if (connection.Exists()) sink_(connection);
}

}  // namespace kiln
