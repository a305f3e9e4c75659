#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

class TBasicNeuron;

// An activation function writes the output of `neuron` for the net input x.
using TActFunction = void (*)(TBasicNeuron& neuron, double x);

// The same function for a row of neurons that share it: writes their outputs from their net inputs.
// Both stand in buffers that have room for PaddedSize (see TKernels) of them.
using TActRowFunction = void (*)(std::span<const double> net_inputs, std::span<double> outputs);

// With y the output written and g the neuron's gain:
void ActError(TBasicNeuron& neuron, double x);            // throws TAssertion: no function was set
void ActNull(TBasicNeuron& neuron, double x);             // throws TAssertion
void ActBias(TBasicNeuron& neuron, double x);             // y = 1
void ActLinear(TBasicNeuron& neuron, double x);           // y = x
void ActSaturatedLinear(TBasicNeuron& neuron, double x);  // y = x within [0, 1]; 0 for a NaN
void ActSigmoid(TBasicNeuron& neuron, double x);          // y = 1/(1+exp(-x)); 1e-300 if x < -500
void ActTanh(TBasicNeuron& neuron, double x);             // y = tanh(x)
void ActLinearGain(TBasicNeuron& neuron, double x);       // y = g x
void ActSigmoidGain(TBasicNeuron& neuron, double x);      // y = 1/(1+exp(-g x))
void ActTanhGain(TBasicNeuron& neuron, double x);         // y = tanh(g x)
void ActCog(TBasicNeuron& neuron, double x);              // y = x, and throws TAssertion: a layer
                                                          // of centres of gravity computes its own
void ActTarnCondition(TBasicNeuron& neuron, double x);    // y = membership of x in the neuron's set

// A table of activation functions by name. Names are compared ignoring case. Files store a neuron's
// function by its name, so names never change.
class TFnRegistry {
 public:
  // An empty table.
  TFnRegistry() = default;

  // The table of the process: "error", "null", "bias", "linear", "saturated-linear", "sigmoid",
  // "tanh", "linear-gain", "sigmoid-gain", "tanh-gain", "cog" and "Tarn-condition".
  static const TFnRegistry& Instance();

  // Adds an entry; a function without a row form is applied neuron by neuron.
  // Throws TAssertion when the name is taken.
  void Register(TActFunction function, std::string_view name, TActRowFunction row_form = nullptr);

  // Whether a function is called `name`. Callers with a name from a user ask this first.
  bool Contains(std::string_view name) const;

  // The function called `name`, the name of `function`: of the entries that match, the last.
  // Throw TAssertion when there is none.
  TActFunction Lookup(std::string_view name) const;
  const std::string& Lookup(TActFunction function) const;

  // The row form of `function`, or null.
  TActRowFunction RowForm(TActFunction function) const;

 private:
  struct TEntry {
    std::string name;
    TActFunction function;
    TActRowFunction row_form;
  };

  const TEntry* Find(std::string_view name) const;
  const TEntry* Find(TActFunction function) const;

  std::vector<TEntry> entries_;
};

}  // namespace kiln
