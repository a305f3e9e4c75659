#pragma once

#include <memory>
#include <span>
#include <vector>

#include "Bramble/GeneValue.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TIterateObj.h"
#include "NeuralNets/TRecall.h"

namespace kiln {

class Data;

// What a worker needs to evaluate genes: a network to write them into, and its recall.
class TGenTrainMeasure {
 public:
  // Flags, one for every gene, say which of them are written: those with FMaskAll.
  // REQUIRES: network and flags outlive the measure.
  TGenTrainMeasure(TBasicNetwork& network, std::span<const TMask> flags);

  // REQUIRES: there is a gene for every weight.
  void SetGenes(std::span<const GeneValue> genes);

  // The root mean square error of the network as it is, averaged over the sets.
  double Error(std::span<const Data* const> sets);

 private:
  TBasicNetwork& MbrNetNetwork;
  std::span<const TMask> MbrSpnFlgWeights;
  TRecall MbrRclRecall;
  TErrorRMSObj MbrErrError;
};

}  // namespace kiln
