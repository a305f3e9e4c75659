#include "NeuralNets/Kernels.h"

#include "NeuralNets/KernelTables.h"

namespace kiln {

namespace {

const TKernels& BestKernels() {
  for (const TKernelLevel level : {TKernelLevel::kAvx512, TKernelLevel::kAvx2}) {
    if (const TKernels* kernels = KernelsOf(level)) return *kernels;
  }
  return kBaselineKernels;
}

const TKernels*& Active() {
  static const TKernels* active = &BestKernels();
  return active;
}

}  // namespace

const TKernels& Kernels() {
  return *Active();
}

const TKernels* KernelsOf(TKernelLevel level) {
  if (level == TKernelLevel::kBaseline) return &kBaselineKernels;
#ifdef __x86_64__
  if (level == TKernelLevel::kAvx2) {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? &kAvx2Kernels
                                                                           : nullptr;
  }
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") ? &kAvx512Kernels
                                                                                 : nullptr;
#else
  return nullptr;
#endif
}

bool ForceKernels(TKernelLevel level) {
  const TKernels* kernels = KernelsOf(level);
  if (kernels != nullptr) Active() = kernels;
  return kernels != nullptr;
}

}  // namespace kiln
