#pragma once

#include "NeuralNets/TConnectedConnections.h"

namespace kiln {

// A weight from every neuron of one layer to every neuron of the other, each with flags: a
// connection can be pruned, and it can be frozen, which keeps its weight out of all training.
class TPrunedConnections : public TConnectedConnections {
 public:
  std::string_view KindName() const override { return "Pruneable"; }
  bool HasFlags() const override { return true; }
  std::unique_ptr<TBasicConnections> Clone() const override;

 protected:
  const char* Module() const override { return "NeuralNets/TPrunedConnections"; }
};

}  // namespace kiln
