#include "GA-Apps/GenTrain/TTarnGAEval.h"

#include <algorithm>
#include <utility>

namespace kiln {

namespace {

std::size_t SizeOf(const TTarn& network, std::size_t from) {
  return network.Connections(from + 1, from).Weights().size();
}

}  // namespace

TTarnGAEval::TTarnGAEval(TTarn& network, const TWeightBounds& bounds)
    : TGenTrainEval(network),
      MbrDyaIntInputGroups(network.InputMF()),
      MbrDyaIntOutputGroups(network.OutputMF()),
      MbrNdxFirstRuleWeight(SizeOf(network, TTarn::kInputLayer)),
      MbrNdxFirstOutputCentre(MbrNdxFirstRuleWeight + SizeOf(network, TTarn::kConditionLayer) +
                              SizeOf(network, TTarn::kRuleLayer)),
      MbrMgnWeight(MetaGene::Real(bounds.FltMinimum, bounds.FltMaximum)) {}

MetaGene TTarnGAEval::DefinitionOf(std::size_t gene) const {
  const bool is_centre = gene < MbrNdxFirstRuleWeight || gene >= MbrNdxFirstOutputCentre;
  return is_centre ? MetaGene::Real(0.0F, 1.0F) : MbrMgnWeight;
}

bool TTarnGAEval::Repair(std::span<GeneValue> genes) const {
  OrderGroups(genes, 0, MbrNdxFirstRuleWeight, MbrDyaIntInputGroups);
  OrderGroups(genes, MbrNdxFirstOutputCentre, genes.size(), MbrDyaIntOutputGroups);
  return true;
}

// The groups of one side, whose genes are those from `first` to before `end`.
void TTarnGAEval::OrderGroups(std::span<GeneValue> genes, std::size_t first, std::size_t end,
                              std::span<const int> sizes) const {
  for (const int size : sizes) {
    const auto count = static_cast<std::size_t>(size);
    const std::size_t group_end = std::min(first + count, end);
    for (std::size_t pass = 0; pass + 1 < count; ++pass) {
      first += pass;
      SwapSmallest(genes, first, group_end);
    }
    first = std::max(first, group_end);
  }
}

void TTarnGAEval::SwapSmallest(std::span<GeneValue> genes, std::size_t place,
                               std::size_t end) const {
  if (place >= end || !IsTrained(place)) return;
  std::size_t smallest = place;
  for (std::size_t gene = place + 1; gene < end; ++gene) {
    if (IsTrained(gene) && genes[gene].Real() < genes[smallest].Real()) smallest = gene;
  }
  std::swap(genes[place], genes[smallest]);
}

}  // namespace kiln
