#pragma once

#include <cstddef>

#include "NeuralNets/Kernels/Connections.h"

namespace kiln {

// A matrix whose element (i, k) is values[i row_stride + k column_stride].
struct TMatrixView {
  const double* values;
  std::size_t row_stride;
  std::size_t column_stride;
};

// `n` rounded up to a multiple of the values that the largest register holds.
constexpr std::size_t PaddedSize(std::size_t n) {
  return (n + 7) / 8 * 8;
}

// How far an update moves a weight w of gradient g, whose last change was p:
//   change = momentum p - rate g - pull sign(w)
// A momentum of exactly 0 is the plain update, which neither reads nor writes last changes.
struct TRates {
  double rate = 0.0;
  double momentum = 0.0;
  double pull = 0.0;
};

// The weights w of a small layer over one of the layers below it, with their last changes p. The
// weights from one neuron below stand side by side in a row of whole registers, with zeros behind
// the last. x are the outputs of the layer below; e are its error terms, or null where no error is
// passed back.
struct TSmallSums {
  std::size_t columns;  // neurons below
  double* w;            // columns x width
  double* p;            // columns x width
  const double* x;
  double* e;
};

// A layer of a small network in training by pattern.
struct TSmallLayer {
  static constexpr std::size_t WidthOf(std::size_t neurons) {
    return neurons <= 2 ? neurons : neurons <= 4 ? 4 : PaddedSize(neurons);
  }

  const TSmallSums* sums;
  std::size_t count;  // of the sums
  std::size_t width;  // WidthOf its neurons
  double* y;          // outputs
  double* d;          // error terms, 0 behind the last neuron
};

// The loops in which recall and training spend their time, over plain buffers. The program contains
// a table of implementations for each of several instruction sets, and chooses the best that the
// processor can run when it starts.
//
// w is a matrix of `rows` x `columns` weights, row-major. m holds the flags of the weights, or is
// null when every connection exists and is trainable: an absent connection contributes nothing,
// even where its input is a NaN, and one that is absent or frozen keeps its weight. Buffers do not
// overlap. Sums are formed in any order, except in the kernels for maps other than least_scores,
// which keep to the order of the formulas, so that a map comes out the same with every table.
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

  // w += p = change, for n weights
  void (*update)(double* w, const TMask* m, TSize n, const double* g, double* p,
                 const TRates& rates);

  // propagate, with the weights as they are, unless e is null; then update by the gradient
  // d[r] x[c].
  void (*step)(double* w, const TMask* m, TSize rows, TSize columns, const double* d,
               const double* x, double* e, double* p, const TRates& rates);

  // y[j] = f(sum over i of w[i][j] x[i], over all sums), where f is the identity or the sigmoid.
  void (*recall_linear)(const TSmallLayer& layer);
  void (*recall_sigmoid)(const TSmallLayer& layer);

  // First d[j] = d[j] f'(y[j]); then for each of the sums, and for each row i of its weights:
  // e[i] += sum over j of w[i][j] d[j], and the update of w[i][j] by the gradient x[i] d[j].
  void (*step_linear)(const TSmallLayer& layer, const TRates& rates);
  void (*step_sigmoid)(const TSmallLayer& layer, const TRates& rates);

  // c[i][j] += sum over k of a[i][k] b[k][j], for i < rows, k < depth and j < columns. The rows of
  // b, which start b_stride apart, have room for PaddedSize(columns) values; those of c start
  // c_stride apart.
  void (*multiply)(TSize rows, TSize depth, TSize columns, const TMatrixView& a, const double* b,
                   TSize b_stride, double* c, TSize c_stride);

  // y[i] = 1 / (1 + exp(-x[i])), or 1e-300 where x[i] < -500; within 3 units in the last place.
  // Works on whole registers: both buffers have room for PaddedSize(n) values.
  void (*sigmoid)(const double* x, double* y, TSize n);

  // y[i] = tanh(x[i]), likewise.
  void (*tanh)(const double* x, double* y, TSize n);

  // Membership function k of a variable is a triangle of height 1 over the centre c[k], whose feet
  // stand on the centres beside it; the first is 1 below its centre, the last above its own. Here
  // they meet the values x[i] of n patterns, with room for PaddedSize(n) in x and in each row of y
  // and e. REQUIRES: at least 2 functions.

  // y[k][i] = the membership of x[i] in function k; the rows of y start y_stride apart.
  void (*memberships)(const double* c, TSize functions, const double* x, TSize n, double* y,
                      TSize y_stride);

  // g[k] += the derivative of an error by c[k], where e[j][i] is that by the membership of x[i] in
  // function j, and 0 behind the last pattern; the rows of e start e_stride apart.
  void (*add_centre_gradients)(const double* c, TSize functions, const double* x, TSize n,
                               const double* e, TSize e_stride, double* g);

  // The units of a map stand side by side in tiles: element i of the prototype of unit u is
  // t[(u / kTile * columns + i) * kTile + u % kTile]. Places behind the last unit hold NaN.
  static constexpr TSize kTile = 8;

  // The score of unit u for a pattern x is halves[u] - sum over i of x[i] w_u[i]: half the squared
  // distance less half the square of x where halves[u] is half the square of the prototype w_u, and
  // what is left of that behind the last unit is NaN. Groups are of kGroup tiles, the last one of
  // as many as remain. Into least[r * groups + g] goes the least score in group g for pattern x[r],
  // for r < rows; NaN counts for nothing.
  static constexpr TSize kGroup = 4;
  void (*least_scores)(const double* t, TSize tiles, TSize columns, const double* halves,
                       const double* const* x, TSize rows, double* least);

  // The unit whose prototype has the smallest squared distance from x, the first of equals, or -1
  // when none is below *distance, which becomes the distance of the unit.
  std::ptrdiff_t (*nearest)(const double* t, TSize tiles, TSize columns, const double* x,
                            double* distance);

  // distances[k] = the squared distance from x of unit k of one tile
  void (*distances)(const double* t, TSize columns, const double* x, double* distances);

  // Moves the prototypes of units first..last-1 towards x: t += rate (x - t)
  void (*approach)(double* t, TSize columns, TSize first, TSize last, const double* x, double rate);
};

enum class TKernelLevel { kBaseline, kAvx2, kAvx512 };

namespace kernels_internal {
extern const TKernels* active;
}

// The table in use.
inline const TKernels& Kernels() {
  return *kernels_internal::active;
}

// The table of a level, or null where the program or the processor does not have it.
const TKernels* KernelsOf(TKernelLevel level);

// The level of the table in use.
TKernelLevel KernelLevel();

// Puts the table of a level in use. Returns false, and changes nothing, where there is none.
bool ForceKernels(TKernelLevel level);

}  // namespace kiln
