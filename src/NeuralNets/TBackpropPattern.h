#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TDelayedBlock.h"
#include "NeuralNets/TTrainPass.h"
#include "NeuralNets/TTrainRun.h"

namespace kiln {

struct DataRow;

// Back-propagation pattern by pattern, each weight changing as errors pass it: what TBackpropModule
// does layer by layer, as a list of sums that is made in advance. In a network of a few neurons it
// takes longer to find out which layers and blocks meet than to calculate.
class TBackpropPattern : public TTrainPass {
 public:
  // `errors` and `changes` are networks of the same shape: the net inputs of the one hold the error
  // terms, the weights of the other the last changes. REQUIRES: the network is plain and can be
  // trained; the structure of all three, flags included, stays as it is while the pass lives.
  TBackpropPattern(TBasicNetwork& network, TBasicNetwork& errors, TBasicNetwork& changes,
                   const TRates& rates);

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
    std::vector<TSums> sums;
    std::vector<TDelayedBlock> delayed;
  };

  void AddStage(TBasicNetwork& errors, TBasicNetwork& changes, std::size_t to);
  void RunPattern(const DataRow& row, TTrainRun& run);
  void Recall(std::span<const double> input);
  void PassBack(bool cross_entropy);

  template <typename TVisit>
  void ForEachDelayed(const TVisit& visit);

  TBasicNetwork& network_;
  TRates rates_;
  std::vector<TStage> stages_;  // lowest layer first
  std::span<double> inputs_;
  std::span<const double> outputs_;
  std::span<double> output_errors_;
};

}  // namespace kiln
