#include "NeuralNets/TConnectedNetwork.h"

#include "NeuralNets/TPatternBlock.h"
#include "NeuralNets/TPrunedConnections.h"

namespace kiln {

void TConnectedNetwork::Connect(std::size_t from, std::size_t to) {
  if (Connections(to, from).IsConnected()) return;
  SetConnections(to, from, std::make_unique<TPrunedConnections>());
}

bool TConnectedNetwork::RecallsInBlocks() const {
  return TPatternBlock::Fits(*this);
}

std::unique_ptr<TBasicNetwork> TConnectedNetwork::Clone() const {
  return std::make_unique<TConnectedNetwork>(*this);
}

}  // namespace kiln
