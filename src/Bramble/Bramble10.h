#pragma once

// The genetic library: all of it but the driver (Bramble/DeathCap.h) and what the driver asks of
// its caller (Bramble/Eval.h).
#include "Bramble/Chromosome.h"  // IWYU pragma: export
#include "Bramble/Crossover.h"   // IWYU pragma: export
#include "Bramble/Gene.h"        // IWYU pragma: export
#include "Bramble/GeneValue.h"   // IWYU pragma: export
#include "Bramble/Individual.h"  // IWYU pragma: export
#include "Bramble/MetaChrom.h"   // IWYU pragma: export
#include "Bramble/MetaGene.h"    // IWYU pragma: export
#include "Bramble/Population.h"  // IWYU pragma: export
#include "Bramble/Status.h"      // IWYU pragma: export
