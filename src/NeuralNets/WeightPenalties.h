#pragma once

#include <cmath>

namespace kiln {

// What a weight w costs beside the error, and the derivative of that. A weight of 0 costs nothing
// and has no slope, so that absent connections need not be told apart.

// epsilon1 beta w^2 / (beta w^2 + 1) + epsilon2 w^2
struct TQuadraticPenalty {
  double epsilon1 = 0.0;
  double epsilon2 = 0.0;
  double beta = 1.0;

  double Price(double weight) const {
    const double square = weight * weight;
    return epsilon1 * beta * square / (beta * square + 1.0) + epsilon2 * square;
  }
  double Slope(double weight) const {
    const double root = beta * weight * weight + 1.0;
    return (epsilon1 * beta / (root * root) + epsilon2) * 2.0 * weight;
  }
  TQuadraticPenalty Times(double share) const { return {share * epsilon1, share * epsilon2, beta}; }
};

// factor |w|
struct TForgettingPenalty {
  double factor = 0.0;

  double Price(double weight) const { return factor * std::abs(weight); }
  double Slope(double weight) const { return weight > 0.0 ? factor : weight < 0.0 ? -factor : 0.0; }
  TForgettingPenalty Times(double share) const { return {share * factor}; }
};

}  // namespace kiln
