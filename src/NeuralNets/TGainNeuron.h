#pragma once

#include "NeuralNets/TBasicNeuron.h"

namespace kiln {

// A neuron that carries a gain g, its parameter "Gain", by which the gain functions multiply the
// net input.
class TGainNeuron : public TBasicNeuron {
 public:
  explicit TGainNeuron(double gain = 1.0) : gain_(gain) {}

  std::unique_ptr<TBasicNeuron> Clone() const override;

  double Gain() const override { return gain_; }

  std::size_t NumParameters() const override { return 1; }
  std::string_view ParameterName(std::size_t) const override { return "Gain"; }
  double GetParameter(std::size_t) const override { return gain_; }
  void SetParameter(std::size_t, double value) override { gain_ = value; }

 private:
  double gain_;
};

}  // namespace kiln
