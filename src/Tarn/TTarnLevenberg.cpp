#include "Tarn/TTarnLevenberg.h"

#include <algorithm>
#include <utility>

#include "Tarn/TCentreConnections.h"

namespace kiln {

namespace {

constexpr double kShare = 0.25;  // of the way to a neighbour

// Centres that stand on one another would have no unit.
constexpr double kLeastUnit = 1e-9;

TTarn& TarnOf(const TTrainState& state) {
  return static_cast<TTarn&>(*state.network);
}

}  // namespace

TTarnLevenberg::TSide::TSide(TTarn& tarn, std::size_t to_layer, std::size_t from_layer)
    : to(to_layer),
      from(from_layer),
      centres(tarn.Centres(to)),
      distances(centres.Weights().size()) {
  centres.MeasureDistances(distances);
}

TTarnLevenberg::TTarnLevenberg(TTrainState& state, const TTrainRun& run,
                               std::unique_ptr<TLayerwisePass> derivatives)
    : TLevenbergPass(state, run, std::move(derivatives)),
      sides_{TSide(TarnOf(state), TTarn::kConditionLayer, TTarn::kInputLayer),
             TSide(TarnOf(state), TTarn::kOutputLayer, TTarn::kActionLayer)} {}

void TTarnLevenberg::SetUnits(TWeightBuffer& units) {
  for (const TSide& side : sides_) {
    const std::span<double> gaps = units.Block(side.to, side.from);
    side.centres.MeasureGaps(gaps);
    for (double& gap : gaps) gap = std::max(gap, kLeastUnit);
  }
}

void TTarnLevenberg::StepTaken(const TWeightBuffer& before) {
  for (const TSide& side : sides_) {
    side.centres.LimitSteps(before.Block(side.to, side.from), kShare);
    side.centres.PutInOrder(side.distances);
  }
}

}  // namespace kiln
