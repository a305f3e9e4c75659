#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Kernels/TCacheLine.h"
#include "NeuralNets/Training/TPatternEnds.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Back-propagation pattern by pattern for small networks, whose weights the nearest cache holds.
// Such a network spends its time waiting for sums that need each other, not on their number;
// therefore it is trained in a copy in which the neurons of a layer stand side by side, in whole
// registers.
class TSmallPass : public TTrainPass {
 public:
  // Whether the network is plain, its layers linear or sigmoid, its weights at most kMaxWeights and
  // all trainable, and the run changes weights at once.
  static constexpr std::size_t kMaxWeights = 2048;  // with as many last changes 32 KiB
  static bool Fits(const TBasicNetwork& network, const TTrainRun& run);

  // Moves weights. REQUIRES: the network fits; while the pass lives the state does, and nothing
  // else changes weights or last changes.
  TSmallPass(TTrainState& state, const TTrainRun& run);

  void Run(const Data& data, int first, int last, TErrorObj& error) override;

 private:
  // A block of the network and its copy, first the weights, then their last changes.
  struct TCopy {
    std::span<double> weights;
    std::span<double> changes;
    std::vector<TCacheLine> copy;
  };

  // A layer that is trained.
  struct TStage {
    TSmallLayer layer = {};
    void (*recall)(const TSmallLayer& layer) = nullptr;
    void (*step)(const TSmallLayer& layer, const TRates& rates) = nullptr;
    std::span<double> errors;      // with the places behind the last neuron
    std::vector<TSmallSums> sums;  // to which layer.sums points
    std::vector<TCopy> blocks;     // the block of each of the sums
  };

  void AddStage(TTrainState& state, const TTrainRun& run, std::size_t to);
  void RunPattern(const DataRow& row, TErrorObj& error);

  // Visits all weights and last changes, visit(copy, original) with references to both.
  template <typename TVisit>
  void ForEachCopy(const TVisit& visit);
  template <typename TVisit>
  static void VisitBlock(const TCopy& block, const TSmallSums& sums, std::size_t width,
                         const TVisit& visit);

  TPatternEnds ends_;
  TRates rates_;
  std::vector<TStage> stages_;  // lowest layer first
};

}  // namespace kiln
