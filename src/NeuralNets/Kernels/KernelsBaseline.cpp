#define KILN_KERNELS kBaselineKernels
#include "NeuralNets/Kernels/Kernels.inc"
