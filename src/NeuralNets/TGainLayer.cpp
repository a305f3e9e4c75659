#include "NeuralNets/TGainLayer.h"

#include "NeuralNets/TGainNeuron.h"

namespace kiln {

TGainLayer::TGainLayer(std::size_t neurons, double gain)
    : TSimpleLayer(neurons, TGainNeuron(gain)) {}

void TGainLayer::SetGain(double gain) {
  for (std::size_t i = 0; i < NumNeurons(); ++i) Neuron(i).SetParameter(0, gain);
}

std::unique_ptr<TBasicLayer> TGainLayer::Clone() const {
  return std::make_unique<TGainLayer>(*this);
}

}  // namespace kiln
