#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "GA-Apps/GenTrain/TGenTrainEval.h"
#include "Tarn/TTarn.h"

namespace kiln {

// Breeds Tarns. The genes are the weights of the weight layers 1 to 4, one after the other: first
// the centres of the inputs' terms, last those of the outputs' terms, in groups of one variable
// each; in between the weights of the rules. Centres lie in [0, 1], other weights within the
// bounds.
class TTarnGAEval : public TGenTrainEval {
 public:
  // REQUIRES: as for TGenTrainEval, and network.IsComplete().
  TTarnGAEval(TTarn& network, const TWeightBounds& bounds);

  // Orders the centres of each variable, in part. A group of n centres gets n - 1 passes, which
  // visit its places 0, 1, 3, 6, 10 and so on; each swaps the smallest centre from its place to the
  // end of the group into that place. So groups of two and three centres ascend, larger ones only
  // in part. Passes of five centres and more go beyond the end of their group, where they swap
  // nothing, and the next group is taken to begin where the last pass was. Neither weights of rules
  // nor frozen centres are ever moved. Always returns true.
  bool Repair(std::span<GeneValue> genes) const override;

 protected:
  MetaGene DefinitionOf(std::size_t gene) const override;

 private:
  void OrderGroups(std::span<GeneValue> genes, std::size_t first, std::size_t end,
                   std::span<const int> sizes) const;
  void SwapSmallest(std::span<GeneValue> genes, std::size_t place, std::size_t end) const;

  std::vector<int> MbrDyaIntInputGroups;  // centres of each variable
  std::vector<int> MbrDyaIntOutputGroups;
  std::size_t MbrNdxFirstRuleWeight;  // places among the genes
  std::size_t MbrNdxFirstOutputCentre;
  MetaGene MbrMgnWeight;
};

}  // namespace kiln
