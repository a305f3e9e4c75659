#pragma once

#include "Bramble/GeneValue.h"
#include "Bramble/MetaGene.h"
#include "Bramble/Status.h"

namespace kiln {

// One gene with everything that belongs to it. Chromosomes pack their genes and hand them out in
// this form.
struct Gene {
  bool BolChanged = false;  // the value has been mutated
  bool BolMutable = true;   // it may be
  MetaGene MgnDefinition = MetaGene::Undefined();
  GeneValue GvlValue;

  // Replaces the value by a random one of the gene's kind and notes the change. Returns SUCCESS;
  // kGeneUndefined or, after that, kGeneImmutable when the gene has no type or may not change.
  GeneticStatus Mutate();

  bool operator==(const Gene&) const = default;
};

}  // namespace kiln
