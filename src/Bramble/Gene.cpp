#include "Bramble/Gene.h"

#include "Bramble/Status.h"

namespace kiln {

int Gene::Mutate() {
  if (MgnDefinition.Type() == GeneType::kUndefined) return kGeneUndefined;
  if (!BolMutable) return kGeneImmutable;
  GvlValue = MgnDefinition.Draw();
  BolChanged = true;
  return SUCCESS;
}

}  // namespace kiln
