#pragma once

#include <cstddef>
#include <span>

#include "NeuralNets/Kernels/Connections.h"

// The membership functions of one variable, given by their centres c[0] <= c[1] <= ... <= c[n-1].
// Function k is a triangle of height 1 at c[k] whose feet stand on the neighbouring centres; the
// first stays at 1 below its centre, the last above it:
//
//   1 ---\   /\   /---
//         \ /  \ /
//          X    X
//   0 ____/ \__/ \____
//       c[0] c[1] c[2]
//
// While the centres ascend, the memberships of any x add up to 1.
namespace kiln {

// Spreads centres evenly over [0, 1]: c[k] = k / (n - 1). REQUIRES: at least two centres.
void PlaceCentresEvenly(std::span<double> centres);

// --- In training -----------------------------------------------------------------------------

// The share of even spacing that training keeps between neighbours.
inline constexpr double kCentreDistance = 0.1;

// The distance that training keeps between each centre and its right neighbour: kCentreDistance of
// even spacing or, where that is less, what it is now, and 0 where they have crossed. The last
// centre has none. REQUIRES: at least two centres, a distance for each.
void MeasureCentreDistances(std::span<const double> centres, std::span<double> distances);

// The distance of each centre from its nearest neighbour. REQUIRES: at least two centres, a gap for
// each.
void MeasureCentreGaps(std::span<const double> centres, std::span<double> gaps);

// Multiplies the derivative of an error by each centre with the square of the gap to its nearest
// neighbour. The slopes of a membership are one over such a gap, so that steps down the gradient
// itself would grow as centres near each other, and throw them together at any rate that moves the
// weights of rules. REQUIRES: at least two centres, a gradient for each.
void ScaleCentreGradients(std::span<const double> centres, std::span<double> gradients);

// The share of the way to a neighbour that a step down the gradient may take an input's centre.
inline constexpr double kCentreStep = 1e-2;

// Shortens the steps that have led from `before` to `centres`: a centre goes at most `share` of the
// way to its neighbour of before, and an outer one as far outwards as inwards.
// REQUIRES: as many centres in `before` as in `centres`, at least two.
void LimitCentreSteps(std::span<const double> before, std::span<double> centres, double share);

// Puts centres back in ascending order within [0, 1] after a step has moved them. From the first to
// the last each is lifted to its distance above its left neighbour and to 0; then, from the last to
// the first, each is lowered to its distance below its right neighbour and to 1. The distances are
// smaller where they do not fit.
//
// `masks` has the flags of each centre, or is null when all are trainable. Frozen centres stay, and
// the others keep to their side of a frozen one even where that is outside [0, 1].
// REQUIRES: at least two centres; a distance of at least 0 to the right neighbour of each but the
// last.
void PutCentresInOrder(std::span<double> centres, std::span<const double> distances,
                       const TMask* masks);

// --- Memberships -----------------------------------------------------------------------------

// The membership of x in function k, whatever the order of the centres. REQUIRES: k < n.
double Membership(std::span<const double> centres, std::size_t k, double x);

// Adds the derivative of an error by each centre that shapes function k at x, when `error` is its
// derivative by the membership m of x. On the falling side, with C the centre and R the right
// neighbour's,
//   dm/dC = (R - x) / (R - C)^2,  dm/dR = (x - C) / (R - C)^2
// and on the rising side, with L the left neighbour's,
//   dm/dC = -(x - L) / (C - L)^2,  dm/dL = -(C - x) / (C - L)^2.
// Where m is 1 or 0 throughout, nothing moves it. REQUIRES: k < n, a gradient for each centre.
void AddCentreGradients(std::span<const double> centres, std::size_t k, double x, double error,
                        std::span<double> gradients);

}  // namespace kiln
