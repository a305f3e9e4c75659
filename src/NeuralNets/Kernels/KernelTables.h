#pragma once

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

// The tables that the program has, one for each instruction set.
extern const TKernels kBaselineKernels;
#ifdef __x86_64__
extern const TKernels kAvx2Kernels;
extern const TKernels kAvx512Kernels;
#endif

}  // namespace kiln
