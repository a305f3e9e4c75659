#include "NeuralNets/TBasicNeuron.h"

#include "NeuralNets/TBasicLayer.h"
#include "Shared/TAssertion.h"

namespace kiln {

std::unique_ptr<TBasicNeuron> TBasicNeuron::Clone() const {
  return std::make_unique<TBasicNeuron>(*this);
}

void TBasicNeuron::Attach(TBasicLayer& layer, std::size_t index) {
  layer_ = &layer;
  index_ = index;
}

void TBasicNeuron::SetActivation(TActFunction function) {
  function_ = function;
  if (layer_ != nullptr) layer_->ForgetCommonActivation();
}

double& TBasicNeuron::Output() const {
  return layer_->Outputs()[index_];
}

double TBasicNeuron::Membership(double) const {
  AssertFalse();
}

std::string_view TBasicNeuron::ParameterName(std::size_t) const {
  AssertFalse();
}

double TBasicNeuron::GetParameter(std::size_t) const {
  AssertFalse();
}

void TBasicNeuron::SetParameter(std::size_t, double) {
  AssertFalse();
}

}  // namespace kiln
