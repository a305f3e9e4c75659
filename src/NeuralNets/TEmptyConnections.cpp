#include "NeuralNets/TEmptyConnections.h"

namespace kiln {

std::unique_ptr<TBasicConnections> TEmptyConnections::Clone() const {
  return std::make_unique<TEmptyConnections>(*this);
}

std::vector<TBasicConnections::TPatchShape> TEmptyConnections::Layout(const TBasicLayer&,
                                                                      const TBasicLayer&) const {
  return {};
}

}  // namespace kiln
