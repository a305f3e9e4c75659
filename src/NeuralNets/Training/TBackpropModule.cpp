#include "NeuralNets/Training/TBackpropModule.h"

#include "NeuralNets/PlainNetworks.h"
#include "NeuralNets/Training/ActDerivatives.h"
#include "NeuralNets/Training/TBackpropBlock.h"
#include "NeuralNets/Training/TBackpropPattern.h"
#include "NeuralNets/Training/TBackpropSmall.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

constexpr char kModule[] = "NeuralNets/TTrainModule";

}  // namespace

void TBackpropModule::CheckLayers(const TTrainRun& run) const {
  for (std::size_t layer = Network().NumLayers(); layer-- > 0;) CheckLayer(run, layer);
}

void TBackpropModule::CheckLayer(const TTrainRun& run, std::size_t layer) const {
  const TActFunction function = Network().Layer(layer).GetActivation();
  Assert(function != nullptr, "fn!= NULL", kModule, 395);
  if (run.ErrorsAreDeltas(Network(), layer)) {
    Assert(function == ActSigmoid, "fn == ActSigmoid", kModule, 399);
  }
  if (Network().HasLowerSources(layer)) {
    Assert(HasDerivative(function), "fn != ActError", kModule, 443);
  }
}

void TBackpropModule::TrainLayer(const TTrainRun& run, std::size_t layer) {
  if (!Network().HasLowerSources(layer)) return;
  const TBasicLayer& neurons = Network().Layer(layer);
  if (!run.ErrorsAreDeltas(Network(), layer)) {
    ErrorsToDeltas(neurons, neurons.Outputs(), Errors(layer));
  }
  const auto sources = Network().Sources(layer);
  for (std::size_t i = sources.size(); i-- > 0;) {
    const std::size_t from = sources[i];
    if (from >= layer) continue;
    TrainBlock(run, layer, from,
               {Errors(layer), Network().Layer(from).Outputs(), ErrorsBelow(from)});
  }
}

std::unique_ptr<TTrainPass> TBackpropModule::MakePass(const TTrainRun& run) {
  if (run.batch && TBackpropBlock::Fits(Network(), run.patterns)) {
    return std::make_unique<TBackpropBlock>(Network(), Gradients());
  }
  if (run.at_once && TBackpropSmall::Fits(Network())) {
    return std::make_unique<TBackpropSmall>(Network(), Gradients(), Changes(), run);
  }
  if (run.at_once && IsPlain(Network())) {
    return std::make_unique<TBackpropPattern>(Network(), Gradients(), Changes(), run);
  }
  return nullptr;
}

}  // namespace kiln
