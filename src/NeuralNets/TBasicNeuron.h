#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "NeuralNets/ActFunctions.h"

namespace kiln {

class TBasicLayer;

// One neuron: its place in its layer and the function that turns its net input into its output. The
// output itself stands in the layer's row of outputs.
//
// Kinds of neurons differ in their named parameters, which files store by name.
class TBasicNeuron {
 public:
  TBasicNeuron() = default;

  // A neuron of the same settings that belongs to no layer yet.
  TBasicNeuron(const TBasicNeuron& other) : function_(other.function_) {}
  TBasicNeuron& operator=(const TBasicNeuron&) = delete;
  virtual ~TBasicNeuron() = default;

  // A copy of the neuron's own kind that belongs to no layer yet.
  virtual std::unique_ptr<TBasicNeuron> Clone() const;

  // Puts the neuron at `index` of `layer`, which outlives it.
  void Attach(TBasicLayer& layer, std::size_t index);

  std::size_t Index() const { return index_; }

  // "error" until a function is set.
  TActFunction GetActivation() const { return function_; }

  // Sets the function of this neuron alone; the layer's other neurons keep theirs.
  void SetActivation(TActFunction function);

  // The neuron's place in its layer's row of outputs. REQUIRES: attached.
  double& Output() const;

  // Applies the function to the net input x. REQUIRES: attached.
  void Activate(double x) { function_(*this, x); }

  // The factor of the gain functions: 1 in a neuron that carries none.
  virtual double Gain() const { return 1.0; }

  // The degree to which x belongs to the neuron's fuzzy set. Throws TAssertion in a neuron that
  // has none.
  virtual double Membership(double x) const;

  // Named parameters, by index 0..NumParameters()-1.
  virtual std::size_t NumParameters() const { return 0; }
  virtual std::string_view ParameterName(std::size_t index) const;
  virtual double GetParameter(std::size_t index) const;
  virtual void SetParameter(std::size_t index, double value);

 protected:
  // REQUIRES: attached.
  const TBasicLayer& Layer() const { return *layer_; }

 private:
  friend class TBasicLayer;  // sets the function of all its neurons at once

  TBasicLayer* layer_ = nullptr;
  std::size_t index_ = 0;
  TActFunction function_ = ActError;
};

}  // namespace kiln
