#include "NeuralNets/TBasicLayer.h"

#include <algorithm>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Limits.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

std::size_t CheckedNeurons(std::size_t neurons) {
  CheckAtMost(TBasicLayer::kMaxNeurons, neurons, "a layer", "neurons", "TBasicLayer::TBasicLayer");
  return neurons;
}

}  // namespace

TBasicLayer::TBasicLayer(std::size_t neurons, const TBasicNeuron& prototype)
    : prototype_(prototype.Clone()), neurons_(CheckedNeurons(neurons)) {
  for (auto& neuron : neurons_) neuron = prototype_->Clone();
  AttachNeurons();
}

TBasicLayer::TBasicLayer(const TBasicLayer& other)
    : prototype_(other.prototype_->Clone()),
      net_inputs_(other.net_inputs_),
      outputs_(other.outputs_),
      function_(other.function_),
      row_form_(other.row_form_) {
  neurons_.reserve(other.neurons_.size());
  for (const auto& neuron : other.neurons_) neurons_.push_back(neuron->Clone());
  AttachNeurons();
}

void TBasicLayer::Activate() {
  if (row_form_ != nullptr) return row_form_(NetInputs(), Outputs());
  for (std::size_t i = 0; i < neurons_.size(); ++i) neurons_[i]->Activate(net_inputs_[i]);
}

void TBasicLayer::ComputeBlock(std::span<const double>, std::span<double>, const TBlockShape&) {
  AssertFalse("NeuralNets/TBasicLayer");
}

void TBasicLayer::Attach(TBasicNetwork& network, std::size_t index) {
  network_ = &network;
  index_ = index;
}

void TBasicLayer::SetActivation(TActFunction function) {
  prototype_->function_ = function;
  for (auto& neuron : neurons_) neuron->function_ = function;
  function_ = function;
  row_form_ = TFnRegistry::Instance().RowForm(function);
}

TActFunction TBasicLayer::GetActivation() const {
  if (function_ != nullptr) return function_;
  if (neurons_.empty()) return ActNull;
  const TActFunction first = neurons_.front()->GetActivation();
  const bool common = std::ranges::all_of(
      neurons_, [&](const auto& neuron) { return neuron->GetActivation() == first; });
  return common ? first : nullptr;
}

bool TBasicLayer::IsBias() const {
  return NumNeurons() > 0 && GetActivation() == ActBias;
}

void TBasicLayer::AddNeuron(std::size_t node) {
  Assert(node <= neurons_.size(), "node<=numneurons");
  CheckedNeurons(neurons_.size() + 1);
  const auto position = static_cast<std::ptrdiff_t>(node);
  neurons_.insert(neurons_.begin() + position, prototype_->Clone());
  net_inputs_.insert(net_inputs_.begin() + position, 0.0);
  outputs_.insert(outputs_.begin() + position, 0.0);
  AttachNeurons();
}

void TBasicLayer::RemoveNeuron(std::size_t node) {
  Assert(node < neurons_.size(), "node<numneurons");
  const auto position = static_cast<std::ptrdiff_t>(node);
  neurons_.erase(neurons_.begin() + position);
  net_inputs_.erase(net_inputs_.begin() + position);
  outputs_.erase(outputs_.begin() + position);
  AttachNeurons();
}

bool TBasicLayer::IsInputLayer() const {
  return network_->InputLayer() == index_;
}

void TBasicLayer::ForgetCommonActivation() {
  function_ = nullptr;
  row_form_ = nullptr;
}

void TBasicLayer::AttachNeurons() {
  net_inputs_.resize(PaddedSize(neurons_.size()));
  outputs_.resize(PaddedSize(neurons_.size()));
  for (std::size_t i = 0; i < neurons_.size(); ++i) neurons_[i]->Attach(*this, i);
}

}  // namespace kiln
