#define KILN_KERNELS kBaselineKernels
#include "NeuralNets/Kernels.inc"
