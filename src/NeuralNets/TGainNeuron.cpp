#include "NeuralNets/TGainNeuron.h"

namespace kiln {

std::unique_ptr<TBasicNeuron> TGainNeuron::Clone() const {
  return std::make_unique<TGainNeuron>(*this);
}

}  // namespace kiln
