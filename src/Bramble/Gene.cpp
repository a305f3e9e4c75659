#include "Bramble/Gene.h"

#include "Bramble/Status.h"

namespace kiln {

GeneticStatus Gene::Mutate() {
  if (MgnDefinition.Type() == GeneType::kUndefined) return GeneticStatus::kGeneUndefined;
  if (!BolMutable) return GeneticStatus::kGeneImmutable;
  GvlValue = MgnDefinition.Draw();
  BolChanged = true;
  return GeneticStatus::SUCCESS;
}

}  // namespace kiln
