#ifdef __x86_64__
#define KILN_KERNELS kAvx2Kernels
#include "NeuralNets/Kernels/Kernels.inc"
#endif
