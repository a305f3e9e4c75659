#pragma once

#include "NeuralNets/TBasicNetwork.h"

namespace kiln {

// A network whose layers are connected one pair at a time.
class TConnectedNetwork : public TBasicNetwork {
 public:
  // Empty simple layers without connections. Throws as TBasicNetwork.
  explicit TConnectedNetwork(int layers) : TBasicNetwork(layers) {}

  // Connects every neuron of a layer with every neuron of another by a pruneable block. A pair that
  // is connected already stays as it is.
  void Connect(std::size_t from, std::size_t to);

  std::string_view KindName() const override { return "Connected"; }
  std::unique_ptr<TBasicNetwork> Clone() const override;
  bool RecallsInBlocks() const override;
};

}  // namespace kiln
