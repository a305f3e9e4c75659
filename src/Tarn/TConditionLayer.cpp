#include "Tarn/TConditionLayer.h"

#include <algorithm>
#include <string>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Tarn/Centres.h"
#include "Tarn/TConditionNeuron.h"
#include "Tarn/TToConditionConnections.h"

namespace kiln {

namespace {

TMFGroups CheckedGroups(std::span<const int> counts) {
  for (const int count : counts) Assert(count >= 2, "NdxMF >= 2");
  return TMFGroups(counts);
}

}  // namespace

TConditionLayer::TConditionLayer(std::span<const int> mf_counts)
    : TConditionLayer(CheckedGroups(mf_counts)) {}

TConditionLayer::TConditionLayer(const TMFGroups& groups)
    : TFuzzyLayer(groups.NumMF(), TConditionNeuron(), groups) {}

TConditionLayer::TConditionLayer(std::size_t neurons)
    : TFuzzyLayer(neurons, TConditionNeuron(), TMFGroups()) {}

void TConditionLayer::SetMFCounts(std::span<const int> counts) {
  TMFGroups groups = CheckedGroups(counts);
  if (groups.NumMF() != NumNeurons()) {
    throw TException("the inputs have " + std::to_string(groups.NumMF()) +
                         " membership functions but their layer has " +
                         std::to_string(NumNeurons()) + " neurons",
                     "Bad Parameter", "TConditionLayer::SetMFCounts");
  }
  SetGroups(std::move(groups));
}

void TConditionLayer::Compute(std::span<const double>) {
  const std::size_t source = SourceLayer(TToConditionConnections::kKindName);
  const std::span<const double> inputs = Network().Layer(source).Outputs();
  for (std::size_t i = 0; i < Groups().NumVariables(); ++i) {
    std::ranges::fill(NetInputs().subspan(Groups().First(i), Groups().Count(i)), inputs[i]);
  }
  Activate();
}

void TConditionLayer::Activate() {
  if (GetActivation() != ActTarnCondition) return TBasicLayer::Activate();
  ForEachInput([this](std::size_t first, std::span<const double> centres, double x) {
    for (std::size_t k = 0; k < centres.size(); ++k) {
      Outputs()[first + k] = kiln::Membership(centres, k, x);
    }
  });
}

bool TConditionLayer::ComputesBlocks() const {
  return GetActivation() == ActTarnCondition && IsJoinedBy(TToConditionConnections::kKindName);
}

void TConditionLayer::ComputeBlock(std::span<const double> inputs, std::span<double> outputs,
                                   const TBlockShape& shape) {
  const std::span<const double> centres = Centres();
  for (std::size_t i = 0; i < Groups().NumVariables(); ++i) {
    const std::size_t first = Groups().First(i);
    Kernels().memberships(&centres[first], Groups().Count(i), &inputs[i * shape.stride],
                          shape.count, &outputs[first * shape.stride], shape.stride);
  }
}

std::unique_ptr<TBasicLayer> TConditionLayer::Clone() const {
  return std::make_unique<TConditionLayer>(*this);
}

double TConditionLayer::Membership(std::size_t neuron, double x) const {
  const std::size_t input = Groups().VariableOf(neuron);
  const std::size_t first = Groups().First(input);
  const std::span<const double> centres = Centres().subspan(first, Groups().Count(input));
  return kiln::Membership(centres, neuron - first, x);
}

void TConditionLayer::AddGradients(std::span<const double> errors,
                                   std::span<double> gradients) const {
  ForEachInput([&](std::size_t first, std::span<const double> centres, double x) {
    const std::span<double> own = gradients.subspan(first, centres.size());
    for (std::size_t k = 0; k < centres.size(); ++k) {
      AddCentreGradients(centres, k, x, errors[first + k], own);
    }
  });
}

void TConditionLayer::AddBlockGradients(std::span<const double> inputs,
                                        std::span<const double> errors, const TBlockShape& shape,
                                        std::span<double> gradients) const {
  const std::span<const double> centres = Centres();
  for (std::size_t i = 0; i < Groups().NumVariables(); ++i) {
    const std::size_t first = Groups().First(i);
    Kernels().add_centre_gradients(&centres[first], Groups().Count(i), &inputs[i * shape.stride],
                                   shape.count, &errors[first * shape.stride], shape.stride,
                                   &gradients[first]);
  }
}

std::span<const double> TConditionLayer::Centres() const {
  const std::size_t source = SourceLayer(TToConditionConnections::kKindName);
  return Network().Connections(Index(), source).Weights();
}

template <typename TVisit>
void TConditionLayer::ForEachInput(const TVisit& visit) const {
  const std::span<const double> all = Centres();
  for (std::size_t i = 0; i < Groups().NumVariables(); ++i) {
    const std::size_t first = Groups().First(i);
    visit(first, all.subspan(first, Groups().Count(i)), NetInputs()[first]);
  }
}

}  // namespace kiln
