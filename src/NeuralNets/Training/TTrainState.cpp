#include "NeuralNets/Training/TTrainState.h"

#include <utility>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

TTrainState::TTrainState(std::shared_ptr<TBasicNetwork> trained)
    : network(std::move(trained)), gradients(*network), changes(*network) {
  for (std::size_t layer = 0; layer < network->NumLayers(); ++layer) {
    error_terms.emplace_back(PaddedSize(network->Layer(layer).NumNeurons()));
  }
}

TTrainCheckpoint::TTrainCheckpoint(const TTrainState& state)
    : weights_(*state.network), changes_(state.changes), method_(state.method) {
  weights_.CopyFrom(*state.network);
}

void TTrainCheckpoint::Restore(TTrainState& state) const {
  weights_.CopyTo(*state.network);
  state.changes = changes_;
  state.method = method_;
}

}  // namespace kiln
