#include "NeuralNets/Training/TTrainState.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

namespace {

// A finite number times 0 is 0; any other is a NaN, and so is every sum with it.
bool AreFinite(std::span<const double> values) {
  double sum = 0.0;
  const double* const value = values.data();
#pragma omp simd reduction(+ : sum)
  for (std::size_t i = 0; i < values.size(); ++i) sum += 0.0 * value[i];
  return sum == 0.0;
}

// Whether the numbers that were finite before still are.
bool AreFiniteAs(std::span<const double> before, std::span<const double> now) {
  return std::ranges::equal(
      before, now, [](double was, double is) { return std::isfinite(is) || !std::isfinite(was); });
}

}  // namespace

TTrainState::TTrainState(std::shared_ptr<TBasicNetwork> trained)
    : network(std::move(trained)), gradients(*network), changes(*network) {
  for (std::size_t layer = 0; layer < network->NumLayers(); ++layer) {
    error_terms.emplace_back(PaddedSize(network->Layer(layer).NumNeurons()));
  }
}

TTrainCheckpoint::TTrainCheckpoint(const TTrainState& state)
    : changes_(state.changes), method_(state.method) {
  state.ForEachBlock([&](std::size_t to, std::size_t from) {
    const std::span<const double> weights = state.network->Connections(to, from).Weights();
    weights_.emplace_back(weights.begin(), weights.end());
  });
}

bool TTrainCheckpoint::IsStillFinite(const TTrainState& state) const {
  bool is_finite = true;
  auto before = weights_.begin();
  state.ForEachBlock([&](std::size_t to, std::size_t from) {
    const std::span<const double> now = state.network->Connections(to, from).Weights();
    is_finite = is_finite && (AreFinite(now) || AreFiniteAs(*before, now));
    ++before;
  });
  return is_finite;
}

void TTrainCheckpoint::Restore(TTrainState& state) const {
  auto before = weights_.begin();
  state.ForEachBlock([&](std::size_t to, std::size_t from) {
    std::ranges::copy(*before, state.network->Connections(to, from).Weights().begin());
    ++before;
  });
  state.changes = changes_;
  state.method = method_;
}

}  // namespace kiln
