#include "NeuralNets/TPrunedConnections.h"

namespace kiln {

std::unique_ptr<TBasicConnections> TPrunedConnections::Clone() const {
  return std::make_unique<TPrunedConnections>(*this);
}

}  // namespace kiln
