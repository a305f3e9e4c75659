#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Training/TDelayedBlock.h"
#include "NeuralNets/Training/TPatternEnds.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Back-propagation pattern by pattern, each weight changing as errors pass it: what TBackpropModule
// does layer by layer, as a list of sums that is made in advance. In a network of a few neurons it
// takes longer to find out which layers and blocks meet than to calculate.
class TBackpropPattern : public TTrainPass {
 public:
  // `errors` and `changes` are networks of the same shape: the net inputs of the one hold the error
  // terms, the weights of the other the last changes. REQUIRES: the network is plain and can be
  // trained; the structure of all three, flags included, stays as it is while the pass lives.
  TBackpropPattern(TBasicNetwork& network, TBasicNetwork& errors, TBasicNetwork& changes,
                   const TTrainRun& run);

  void Run(const Data& data, TTrainRun& run) override;

 private:
  // A rectangle of weights between two layers, with the outputs x below and the net inputs y above
  // it, and the deltas d above and errors e below it; e is null where nothing below is trained.
  struct TSums {
    TWeightPatch patch;
    double* changes;
    const double* x;
    double* y;
    const double* d;
    double* e;
  };

  // A layer that is trained, and the sums that lead to it.
  struct TStage {
    TBasicLayer& layer;
    std::span<double> errors;
    bool errors_are_deltas;  // sigmoid outputs under cross entropy
    std::vector<TSums> sums;
    std::vector<TDelayedBlock> delayed;
  };

  void AddStage(TBasicNetwork& errors, TBasicNetwork& changes, const TTrainRun& run,
                std::size_t to);
  void RunPattern(const DataRow& row, TTrainRun& run);
  static void Recall(const TStage& stage);
  void Step(TStage& stage);

  template <typename TVisit>
  void ForEachDelayed(const TVisit& visit);

  TBasicNetwork& network_;
  TPatternEnds ends_;
  TRates rates_;
  std::vector<TStage> stages_;  // lowest layer first
};

}  // namespace kiln
