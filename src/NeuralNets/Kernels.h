#pragma once

#include <cstddef>

#include "NeuralNets/TIterateObj.h"

namespace kiln {

// The loops in which recall and training spend their time, over plain buffers. Several
// implementations of the table, for different instruction sets, are in the program; the best one
// that the processor has is chosen at start.
//
// w is a matrix of `rows` x `columns` weights, row-major. m holds the flags of the weights, or is
// null when every connection exists and is trainable: an absent connection contributes nothing,
// whatever values meet there, and one that is absent or frozen keeps its weight. Buffers do not
// overlap. Sums are formed in any order.
struct TKernels {
  using TSize = std::size_t;

  // y[r] += sum over c of w[r][c] x[c]
  void (*accumulate)(const double* w, const TMask* m, TSize rows, TSize columns, const double* x,
                     double* y);

  // e[c] += sum over r of w[r][c] d[r]
  void (*propagate)(const double* w, const TMask* m, TSize rows, TSize columns, const double* d,
                    double* e);

  // g[r][c] += d[r] x[c]
  void (*add_gradient)(double* g, TSize rows, TSize columns, const double* d, const double* x);

  // w -= rate g, for n weights
  void (*update)(double* w, const TMask* m, TSize n, const double* g, double rate);

  // p = momentum p - rate g; w += p
  void (*update_momentum)(double* w, const TMask* m, TSize n, const double* g, double* p,
                          double rate, double momentum);

  // propagate, with the weights as they are, then update with the gradient d[r] x[c]. Without
  // propagation where e is null.
  void (*step)(double* w, const TMask* m, TSize rows, TSize columns, const double* d,
               const double* x, double* e, double rate);

  // propagate, then update_momentum in the same way.
  void (*step_momentum)(double* w, const TMask* m, TSize rows, TSize columns, const double* d,
                        const double* x, double* e, double* p, double rate, double momentum);

  // sum over i of (a[i] - b[i])^2
  double (*squared_distance)(const double* a, const double* b, TSize n);

  // y[i] = 1 / (1 + exp(-x[i])), or 1e-300 where x[i] < -500; within 2 units in the last place.
  void (*sigmoid)(const double* x, double* y, TSize n);
};

enum class TKernelLevel { kBaseline, kAvx2, kAvx512 };

// The table in use.
const TKernels& Kernels();

// The table of a level, or null where the program or the processor does not have it.
const TKernels* KernelsOf(TKernelLevel level);

// Puts the table of a level in use. Returns false, and changes nothing, where there is none.
bool ForceKernels(TKernelLevel level);

}  // namespace kiln
