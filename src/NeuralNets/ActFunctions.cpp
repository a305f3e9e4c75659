#include "NeuralNets/ActFunctions.h"

#include <algorithm>
#include <cmath>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/TBasicNeuron.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr char kModule[] = "NeuralNets/ActFunctions";  // users quote the lines given with it

void BiasRow(std::span<const double>, std::span<double> outputs) {
  std::ranges::fill(outputs, 1.0);
}

void LinearRow(std::span<const double> net_inputs, std::span<double> outputs) {
  std::ranges::copy(net_inputs, outputs.begin());
}

void SigmoidRow(std::span<const double> net_inputs, std::span<double> outputs) {
  Kernels().sigmoid(net_inputs.data(), outputs.data(), outputs.size());
}

void TanhRow(std::span<const double> net_inputs, std::span<double> outputs) {
  Kernels().tanh(net_inputs.data(), outputs.data(), outputs.size());
}

TFnRegistry MakeRegistry() {
  TFnRegistry registry;
  registry.Register(ActError, "error");
  registry.Register(ActNull, "null");
  registry.Register(ActBias, "bias", BiasRow);
  registry.Register(ActLinear, "linear", LinearRow);
  registry.Register(ActSaturatedLinear, "saturated-linear");
  registry.Register(ActSigmoid, "sigmoid", SigmoidRow);
  registry.Register(ActTanh, "tanh", TanhRow);
  registry.Register(ActLinearGain, "linear-gain");
  registry.Register(ActSigmoidGain, "sigmoid-gain");
  registry.Register(ActTanhGain, "tanh-gain");
  registry.Register(ActCog, "cog");
  registry.Register(ActTarnCondition, "Tarn-condition");
  return registry;
}

}  // namespace

void ActError(TBasicNeuron&, double) {
  AssertFalse(kModule, 37);
}

void ActNull(TBasicNeuron&, double) {
  AssertFalse(kModule, 45);
}

void ActBias(TBasicNeuron& neuron, double) {
  neuron.Output() = 1.0;
}

void ActLinear(TBasicNeuron& neuron, double x) {
  neuron.Output() = x;
}

void ActSaturatedLinear(TBasicNeuron& neuron, double x) {
  // A NaN fails both comparisons, and gives 0.
  neuron.Output() = x > 1.0 ? 1.0 : x > 0.0 ? x : 0.0;
}

void ActSigmoid(TBasicNeuron& neuron, double x) {
  const double net[PaddedSize(1)] = {x};
  double output[PaddedSize(1)];
  Kernels().sigmoid(net, output, 1);
  neuron.Output() = output[0];
}

void ActTanh(TBasicNeuron& neuron, double x) {
  const double net[PaddedSize(1)] = {x};
  double output[PaddedSize(1)];
  Kernels().tanh(net, output, 1);
  neuron.Output() = output[0];
}

void ActLinearGain(TBasicNeuron& neuron, double x) {
  neuron.Output() = neuron.Gain() * x;
}

void ActSigmoidGain(TBasicNeuron& neuron, double x) {
  neuron.Output() = 1.0 / (1.0 + std::exp(-(neuron.Gain() * x)));
}

void ActTanhGain(TBasicNeuron& neuron, double x) {
  neuron.Output() = std::tanh(neuron.Gain() * x);
}

void ActCog(TBasicNeuron& neuron, double x) {
  neuron.Output() = x;
  AssertFalse(kModule, 151);
}

void ActTarnCondition(TBasicNeuron& neuron, double x) {
  neuron.Output() = neuron.Membership(x);
}

const TFnRegistry& TFnRegistry::Instance() {
  static const TFnRegistry registry = MakeRegistry();
  return registry;
}

void TFnRegistry::Register(TActFunction function, std::string_view name, TActRowFunction row_form) {
  Assert(!Contains(name), "strcasecmp(p,pp->name)!=0", kModule, 252);
  entries_.push_back({std::string(name), function, row_form});
}

bool TFnRegistry::Contains(std::string_view name) const {
  return Find(name) != nullptr;
}

TActFunction TFnRegistry::Lookup(std::string_view name) const {
  const TEntry* entry = Find(name);
  if (entry == nullptr) AssertFalse(kModule, 223);
  return entry->function;
}

const std::string& TFnRegistry::Lookup(TActFunction function) const {
  const TEntry* entry = Find(function);
  if (entry == nullptr) AssertFalse(kModule, 239);
  return entry->name;
}

TActRowFunction TFnRegistry::RowForm(TActFunction function) const {
  const TEntry* entry = Find(function);
  return entry != nullptr ? entry->row_form : nullptr;
}

const TFnRegistry::TEntry* TFnRegistry::Find(std::string_view name) const {
  return FindNoCase(entries_, name, &TEntry::name);
}

const TFnRegistry::TEntry* TFnRegistry::Find(TActFunction function) const {
  const auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                                  [&](const TEntry& entry) { return entry.function == function; });
  return found != entries_.rend() ? &*found : nullptr;
}

}  // namespace kiln
