#include "NeuralNets/Training/TTrainState.h"

#include <algorithm>
#include <cmath>
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

bool TTrainCheckpoint::IsStillFinite(const TTrainState& state) const {
  bool is_finite = true;
  state.ForEachBlock([&](std::size_t to, std::size_t from) {
    is_finite =
        is_finite &&
        std::ranges::equal(
            weights_.Block(to, from), state.network->Connections(to, from).Weights(),
            [](double before, double now) { return std::isfinite(now) || !std::isfinite(before); });
  });
  return is_finite;
}

void TTrainCheckpoint::Restore(TTrainState& state) const {
  weights_.CopyTo(*state.network);
  state.changes = changes_;
  state.method = method_;
}

}  // namespace kiln
