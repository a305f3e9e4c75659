#include "NeuralNets/Training/TBackpropModule.h"

#include <utility>

#include "NeuralNets/Training/ActDerivatives.h"
#include "NeuralNets/Training/TBlockPass.h"
#include "NeuralNets/Training/TLayerwisePass.h"
#include "NeuralNets/Training/TLevenbergPass.h"
#include "NeuralNets/Training/TPatternPass.h"
#include "NeuralNets/Training/TSmallPass.h"
#include "Shared/TAssertion.h"

namespace kiln {

namespace {

// Users quote this source, and these lines, for whatever training refuses.
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

// Which way a run goes through the patterns: the first row whose conditions hold.
//
//   update        network                                                  pass
//   one a batch   plain, no connection absent, at most 131072 neurons;     TBlockPass
//                 batches of at least 4 patterns
//   at once       plain, layers linear or sigmoid, all connections there   TSmallPass
//                 and trainable, at most 2048 weights
//   at once       plain                                                    TPatternPass
//   any           any                                                      TLayerwisePass
//
// Batches of at least 512 rows go through these passes in several lanes (TLanePass). Levenberg
// steps are a pass of their own, by MakeLevenbergPass.
//
// "At once" is TTrainRun::at_once, "plain" is IsPlain. Within TPatternPass those patches over
// the inputs that are at least 16 rows high and 48 to 65536 columns wide, with no connection absent
// or frozen, go through TDelayedBlock, on sets of at least 8 patterns, with a momentum of at most 1
// and nothing that pulls at the weights.
std::unique_ptr<TTrainPass> TBackpropModule::MakePass(TTrainState& state, const TTrainRun& run) {
  if (TBlockPass::Fits(Network(), run)) return std::make_unique<TBlockPass>(state, run);
  if (TSmallPass::Fits(Network(), run)) return std::make_unique<TSmallPass>(state, run);
  if (TPatternPass::Fits(Network(), run)) {
    return std::make_unique<TPatternPass>(state, run);
  }
  return std::make_unique<TLayerwisePass>(state, run);
}

std::unique_ptr<TTrainPass> TBackpropModule::MakeLevenbergPass(const TTrainRun& run) {
  auto derivatives = std::make_unique<TLayerwisePass>(State(), run);
  return std::make_unique<TLevenbergPass>(State(), run, std::move(derivatives));
}

}  // namespace kiln
