#ifdef __x86_64__
#define KILN_KERNELS kAvx512Kernels
#include "NeuralNets/Kernels/Kernels.inc"
#endif
