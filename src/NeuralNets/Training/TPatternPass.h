#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "NeuralNets/Training/TDelayedBlock.h"
#include "NeuralNets/Training/TPatternEnds.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"

namespace kiln {

// Back-propagation pattern by pattern, each weight changing as errors pass it: what TLayerwisePass
// does layer by layer, as a list of sums that is made in advance. In a network of a few neurons it
// takes longer to find out which layers and blocks meet than to calculate.
class TPatternPass : public TTrainPass {
 public:
  // Whether the network is plain and the run changes weights at once.
  static bool Fits(const TBasicNetwork& network, const TTrainRun& run);

  // Moves weights. REQUIRES: the network fits and can be trained; its flags stay as they are, and
  // the state lives, while the pass does.
  TPatternPass(TTrainState& state, const TTrainRun& run);

  void Run(const Data& data, int first, int last, TErrorObj& error) override;

  // How many patches of weights go through a TDelayedBlock.
  std::size_t NumDelayed() const;

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

  void AddStage(TTrainState& state, const TTrainRun& run, std::size_t to);
  void RunPattern(const DataRow& row, TErrorObj& error);
  static void Recall(const TStage& stage);
  void Step(TStage& stage);

  template <typename TVisit>
  void ForEachDelayed(const TVisit& visit);

  TPatternEnds ends_;
  TRates rates_;
  std::vector<TStage> stages_;  // lowest layer first
};

}  // namespace kiln
