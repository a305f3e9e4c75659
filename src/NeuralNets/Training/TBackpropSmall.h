#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Kernels/Kernels.h"
#include "NeuralNets/Training/TPatternEnds.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Back-propagation pattern by pattern for small networks, whose weights the nearest cache holds.
// Their time goes into waiting for one sum after the other, not into the number of sums; so they
// are trained in a copy in which the neurons of a layer stand side by side, in whole registers.
class TBackpropSmall : public TTrainPass {
 public:
  // Whether a network is plain, its layers linear or sigmoid, and its weights few and all
  // trainable.
  static bool Fits(const TBasicNetwork& network);

  // `errors` and `changes` are networks of the same shape: the net inputs of the one hold the error
  // terms, the weights of the other the last changes. REQUIRES: the network fits; while the pass
  // lives, nothing else changes its weights or the last changes.
  TBackpropSmall(TBasicNetwork& network, TBasicNetwork& errors, TBasicNetwork& changes,
                 const TTrainRun& run);

  void Run(const Data& data, TTrainRun& run) override;

 private:
  // What a cache takes in one go.
  struct alignas(64) TCacheLine {
    double values[8];
  };

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
    std::vector<TSmallSums> sums;  // those of the layer
    std::vector<TCopy> blocks;     // that of each sum
  };

  void AddStage(TBasicNetwork& errors, TBasicNetwork& changes, const TTrainRun& run,
                std::size_t to);
  void RunPattern(const DataRow& row, TTrainRun& run);

  // Visits all weights and last changes, visit(copy, original) with references to both.
  template <typename TVisit>
  void ForEachCopy(const TVisit& visit);
  template <typename TVisit>
  static void VisitBlock(const TCopy& block, const TSmallSums& sums, std::size_t width,
                         const TVisit& visit);

  TBasicNetwork& network_;
  TPatternEnds ends_;
  TRates rates_;
  std::vector<TStage> stages_;  // lowest layer first
};

}  // namespace kiln
