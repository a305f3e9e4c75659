#include "NeuralNets/Kernels/Kernels.h"

#include <initializer_list>

#include "NeuralNets/Kernels/KernelTables.h"

namespace kiln {

namespace {

const TKernels& BestKernels() {
#ifdef __x86_64__
  __builtin_cpu_init();
#endif
  for (const TKernelLevel level : {TKernelLevel::kAvx512, TKernelLevel::kAvx2}) {
    if (const TKernels* kernels = KernelsOf(level)) return *kernels;
  }
  return kBaselineKernels;
}

}  // namespace

// Set at compile time first, so that code which runs before the choice has kernels too.
constinit const TKernels* kernels_internal::active = &kBaselineKernels;

namespace {

[[maybe_unused]] const bool kIsChosen = (kernels_internal::active = &BestKernels(), true);

}  // namespace

const TKernels* KernelsOf(TKernelLevel level) {
  if (level == TKernelLevel::kBaseline) return &kBaselineKernels;
#ifdef __x86_64__
  if (level == TKernelLevel::kAvx2) {
    const bool has_avx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
    return has_avx2 ? &kAvx2Kernels : nullptr;
  }
  const bool has_avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512dq") &&
                          __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw");
  return has_avx512 ? &kAvx512Kernels : nullptr;
#else
  return nullptr;
#endif
}

TKernelLevel KernelLevel() {
  for (const TKernelLevel level : {TKernelLevel::kAvx512, TKernelLevel::kAvx2}) {
    if (KernelsOf(level) == kernels_internal::active) return level;
  }
  return TKernelLevel::kBaseline;
}

bool ForceKernels(TKernelLevel level) {
  const TKernels* kernels = KernelsOf(level);
  if (kernels != nullptr) kernels_internal::active = kernels;
  return kernels != nullptr;
}

}  // namespace kiln
