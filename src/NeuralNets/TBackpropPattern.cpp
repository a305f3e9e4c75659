#include "NeuralNets/TBackpropPattern.h"

#include <algorithm>
#include <functional>

#include "DataObject/Data.h"
#include "NeuralNets/ActDerivatives.h"
#include "NeuralNets/Kernels.h"

namespace kiln {

namespace {

// Hands the patches of two blocks on.
template <typename TVisit>
class TVisitPatches : public TIterateObj2 {
 public:
  explicit TVisitPatches(const TVisit& visit) : visit_(visit) {}
  void Patch(const TWeightPatch& patch, double* second) override { visit_(patch, second); }

 private:
  const TVisit& visit_;
};

}  // namespace

TBackpropPattern::TBackpropPattern(TBasicNetwork& network, TBasicNetwork& errors,
                                   TBasicNetwork& changes, const TRates& rates)
    : network_(network),
      rates_(rates),
      inputs_(network.Layer(network.InputLayer()).Outputs()),
      outputs_(network.Layer(network.OutputLayer()).Outputs()),
      output_errors_(errors.Layer(network.OutputLayer()).NetInputs()) {
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    if (network.HasLowerSources(layer)) {
      AddStage(errors, changes, layer);
    } else if (layer != network.InputLayer()) {
      network.Layer(layer).Compute({});  // such as a bias: its outputs never change
    }
  }
}

void TBackpropPattern::AddStage(TBasicNetwork& errors, TBasicNetwork& changes, std::size_t to) {
  TBasicLayer& layer = network_.Layer(to);
  stages_.push_back({layer, errors.Layer(to).NetInputs(), {}, {}});
  TStage& stage = stages_.back();
  for (const std::size_t from : network_.Sources(to)) {
    const double* x = network_.Layer(from).Outputs().data();
    double* e = network_.HasLowerSources(from) ? errors.Layer(from).NetInputs().data() : nullptr;
    const auto add = [&](const TWeightPatch& patch, double* last_changes) {
      if (from == network_.InputLayer() && TDelayedBlock::Fits(patch, rates_)) {
        stage.delayed.emplace_back(patch, last_changes, rates_);
        return;
      }
      stage.sums.push_back({patch, last_changes, x + patch.from,
                            layer.NetInputs().data() + patch.to, stage.errors.data() + patch.to,
                            e != nullptr ? e + patch.from : nullptr});
    };
    TVisitPatches visit(add);
    network_.Connections(to, from).Iterate2(changes.Connections(to, from), visit);
  }
}

void TBackpropPattern::Run(const Data& data, TTrainRun& run) {
  constexpr int kPatterns = TDelayedBlock::kPatterns;
  for (int first = 0; first < data.DataRows(); first += kPatterns) {
    ForEachDelayed([&](TDelayedBlock& block) { block.Begin(data, first); });
    const int last = std::min(first + kPatterns, data.DataRows());
    for (int n = first; n < last; ++n) RunPattern(data.Row(n), run);
    ForEachDelayed([](TDelayedBlock& block) { block.End(); });
  }
}

template <typename TVisit>
void TBackpropPattern::ForEachDelayed(const TVisit& visit) {
  for (TStage& stage : stages_) std::ranges::for_each(stage.delayed, visit);
}

void TBackpropPattern::RunPattern(const DataRow& row, TTrainRun& run) {
  Recall(row.Inputs);
  run.error->Accumulate(row.Outputs, outputs_);
  for (const TStage& stage : stages_) std::ranges::fill(stage.errors, 0.0);
  std::ranges::transform(outputs_, row.Outputs, output_errors_.begin(), std::minus<>());
  PassBack(run.cross_entropy);
}

void TBackpropPattern::Recall(std::span<const double> input) {
  std::ranges::copy(input, inputs_.begin());
  const TKernels& kernels = Kernels();
  for (const TStage& stage : stages_) {
    std::ranges::fill(stage.layer.NetInputs(), 0.0);
    for (const TDelayedBlock& block : stage.delayed) block.Accumulate(stage.layer.NetInputs());
    for (const TSums& sums : stage.sums) {
      const TWeightPatch& patch = sums.patch;
      kernels.accumulate(patch.weights, patch.masks, patch.rows, patch.columns, sums.x, sums.y);
    }
    stage.layer.Activate();
  }
}

void TBackpropPattern::PassBack(bool cross_entropy) {
  const TKernels& kernels = Kernels();
  for (std::size_t i = stages_.size(); i-- > 0;) {
    TStage& stage = stages_[i];
    if (!cross_entropy || stage.errors.data() != output_errors_.data()) {
      ErrorsToDeltas(stage.layer, stage.layer.Outputs(), stage.errors);
    }
    for (std::size_t k = stage.sums.size(); k-- > 0;) {
      const TSums& sums = stage.sums[k];
      const TWeightPatch& patch = sums.patch;
      kernels.step(patch.weights, patch.masks, patch.rows, patch.columns, sums.d, sums.x, sums.e,
                   sums.changes, rates_);
    }
    for (TDelayedBlock& block : stage.delayed) block.Step(stage.errors);
  }
}

}  // namespace kiln
