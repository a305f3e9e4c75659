#include "NeuralNets/TIterateObj.h"

#include <utility>

#include "Shared/TAssertion.h"

namespace kiln {

void CheckSelector(TMask val) {
  Assert(val == FMaskAll || val == FMaskExists, "(val==FMaskAll) || (val==FMaskExists)",
         "NeuralNets/TPrunedConnections");
}

TIterateObjAggregate::TIterateObjAggregate(std::vector<TIterateObj*> operations)
    : operations_(std::move(operations)) {}

void TIterateObjAggregate::Connection(TConnection& connection) {
  for (TIterateObj* operation : operations_) operation->Connection(connection);
}

void TIterateObj2::Patch(const TWeightPatch& patch, double* second) {
  for (std::size_t i = 0; i < patch.Size(); ++i) {
    if (patch.masks == nullptr || (patch.masks[i] & FMaskExists) != 0) {
      Connection(patch.weights[i], second[i]);
    }
  }
}

void TIterateObj2::Connection(double&, double&) {
  AssertFalse("NeuralNets/TIterateObj");
}

}  // namespace kiln
