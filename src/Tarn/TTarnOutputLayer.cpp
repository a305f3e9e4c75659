#include "Tarn/TTarnOutputLayer.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <string>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/NumberFormat.h"
#include "Shared/Say.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Tarn/TToOutputConnections.h"

namespace kiln {

namespace {

// The centre of gravity of n = `terms` actions. Where all centres are 1 it is the quotient of two
// sums of the same actions, which rounding can make differ: n products and 2 n sums put it at most
// n epsilon above 1. Such a value counts as 1.
double CentreOfGravity(double numerator, double denominator, std::size_t terms) {
  if (numerator == 0.0 || denominator == 0.0) return 0.0;
  const double value = numerator / denominator;
  const double rounding = static_cast<double>(terms) * std::numeric_limits<double>::epsilon();
  return value > 1.0 && value <= 1.0 + rounding ? 1.0 : value;
}

// sums += the sum of rows times factors, for several patterns. Rows stand one after the other, and
// factors `factor_stride` apart.
void AddProducts(std::size_t terms, const double* factors, std::size_t factor_stride,
                 const double* rows, double* sums, const TBlockShape& shape) {
  Kernels().multiply(1, terms, PaddedSize(shape.count), {factors, 0, factor_stride}, rows,
                     shape.stride, sums, shape.stride);
}

void CheckRange(double value) {
  if (value >= 0.0 && value <= 1.0) return;
  SayLine(FormatGeneral(value, 6));
  Assert(false, "(ActActivation >= 0) && (ActActivation <= 1)");
}

}  // namespace

TTarnOutputLayer::TTarnOutputLayer(std::span<const int> mf_counts)
    : TFuzzyLayer(mf_counts.size(), TBasicNeuron(), TMFGroups(mf_counts)),
      sums_(mf_counts.size()) {}

TTarnOutputLayer::TTarnOutputLayer(std::size_t neurons)
    : TFuzzyLayer(neurons, TBasicNeuron(), TMFGroups()), sums_(neurons) {}

void TTarnOutputLayer::SetMFCounts(std::span<const int> counts) {
  if (counts.size() != NumNeurons()) {
    throw TException("there are membership functions of " + std::to_string(counts.size()) +
                         " outputs but their layer has " + std::to_string(NumNeurons()) +
                         " neurons",
                     "Bad Parameter", "TTarnOutputLayer::SetMFCounts");
  }
  SetGroups(TMFGroups(counts));
}

void TTarnOutputLayer::Compute(std::span<const double>) {
  const std::size_t source = SourceLayer(TToOutputConnections::kKindName);
  const std::span<const double> actions = Network().Layer(source).Outputs();
  std::ranges::fill(NetInputs(), 0.0);
  Network().Connections(Index(), source).Accumulate(actions, NetInputs());
  for (std::size_t t = 0; t < NumNeurons(); ++t) {
    const auto terms = actions.subspan(Groups().First(t), Groups().Count(t));
    sums_[t] = std::accumulate(terms.begin(), terms.end(), 0.0);
    const double value = CentreOfGravity(NetInputs()[t], sums_[t], terms.size());
    CheckRange(value);
    Outputs()[t] = value;
  }
}

bool TTarnOutputLayer::ComputesBlocks() const {
  return IsJoinedBy(TToOutputConnections::kKindName);
}

void TTarnOutputLayer::ComputeBlock(std::span<const double> actions, std::span<double> outputs,
                                    const TBlockShape& shape) {
  const std::size_t source = SourceLayer(TToOutputConnections::kKindName);
  const std::span<const double> centres = Network().Connections(Index(), source).Weights();
  const double one = 1.0;
  block_sums_.assign(outputs.size(), 0.0);
  std::ranges::fill(outputs, 0.0);
  for (std::size_t t = 0; t < NumNeurons(); ++t) {
    const std::size_t first = Groups().First(t);
    const double* rows = &actions[first * shape.stride];
    const std::size_t at = t * shape.stride;
    AddProducts(Groups().Count(t), &one, 0, rows, &block_sums_[at], shape);
    AddProducts(Groups().Count(t), &centres[first], 1, rows, &outputs[at], shape);
  }
  for (std::size_t p = 0; p < shape.count; ++p) {
    for (std::size_t t = 0; t < NumNeurons(); ++t) {
      const std::size_t at = t * shape.stride + p;
      outputs[at] = CentreOfGravity(outputs[at], block_sums_[at], Groups().Count(t));
      CheckRange(outputs[at]);
    }
  }
}

std::unique_ptr<TBasicLayer> TTarnOutputLayer::Clone() const {
  return std::make_unique<TTarnOutputLayer>(*this);
}

}  // namespace kiln
