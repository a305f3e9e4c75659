#include "GA-Apps/GenTrain/TGenTrainMeasure.h"

#include "DataObject/Data.h"

namespace kiln {

TGenTrainMeasure::TGenTrainMeasure(TBasicNetwork& network, std::span<const TMask> flags)
    : MbrNetNetwork(network),
      MbrSpnFlgWeights(flags),
      MbrRclRecall(network),
      MbrErrError(network.NumOutputs()) {}

// Walks the blocks in the one order of weights.
void TGenTrainMeasure::SetGenes(std::span<const GeneValue> genes) {
  std::size_t gene = 0;
  for (std::size_t from = 0; from < MbrNetNetwork.NumLayers(); ++from) {
    for (std::size_t to = 0; to < MbrNetNetwork.NumLayers(); ++to) {
      for (double& weight : MbrNetNetwork.Connections(to, from).Weights()) {
        if (MbrSpnFlgWeights[gene] == FMaskAll) weight = genes[gene].Real();
        ++gene;
      }
    }
  }
}

double TGenTrainMeasure::Error(std::span<const Data* const> sets) {
  double sum = 0.0;
  for (const Data* set : sets) {
    MbrErrError.Reset();
    sum += MbrRclRecall.Error(*set, MbrErrError);
  }
  return sum / static_cast<double>(sets.size());
}

}  // namespace kiln
