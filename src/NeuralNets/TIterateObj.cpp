#include "NeuralNets/TIterateObj.h"

#include <utility>

#include "Shared/TAssertion.h"

namespace kiln {

void CheckSelector(TMask val) {
  // Users quote this source for a bad selector.
  Assert(val == FMaskAll || val == FMaskExists, "(val==FMaskAll) || (val==FMaskExists)",
         "NeuralNets/TPrunedConnections");
}

TIterateObjAggregate::TIterateObjAggregate(std::vector<TIterateObj*> operations)
    : operations_(std::move(operations)) {}

void TIterateObjAggregate::Connection(TConnection& connection) {
  for (TIterateObj* operation : operations_) operation->Connection(connection);
}

}  // namespace kiln
