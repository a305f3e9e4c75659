#include "Tarn/TConditionNeuron.h"

#include "Tarn/TConditionLayer.h"

namespace kiln {

std::unique_ptr<TBasicNeuron> TConditionNeuron::Clone() const {
  return std::make_unique<TConditionNeuron>(*this);
}

double TConditionNeuron::Membership(double x) const {
  return static_cast<const TConditionLayer&>(Layer()).Membership(Index(), x);
}

}  // namespace kiln
