#include "NeuralNets/TErrorObj.h"

#include <cmath>

#include "NeuralNets/Parameters.h"
#include "NeuralNets/WeightPenalties.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

double QuadraticPenalty(std::span<const double> weights, const TKQstructure& constants,
                        double scale) {
  const TQuadraticPenalty penalty = {NumberOr(constants, "EPSILON1", 0.0),
                                     NumberOr(constants, "EPSILON2", 0.0),
                                     NumberOr(constants, "BETA", 1.0)};
  double sum = 0.0;
  for (const double weight : weights) sum += scale * penalty.Price(weight);
  return sum;
}

// No scale applies: the size of this penalty is set by its two rates.
double ForgettingPenalty(std::span<const double> weights, const TKQstructure& constants) {
  double sum = 0.0;
  for (const double weight : weights) sum += std::abs(weight);
  return NumberOr(constants, "LEARNINGRATE", 0.0) * NumberOr(constants, "FORGETTINGRATE", 0.0) *
         sum;
}

double CrossEntropy(double t, double y) {
  if (y == 1.0) return t == 1.0 ? 0.0 : 1000000.0;
  if (y == 0.0 && t == 0.0) return 0.0;
  return -t * std::log(y) - (1.0 - t) * std::log(1.0 - y);
}

}  // namespace

void TErrorObj::Reset() {
  patterns_ = 0;
  sum_ = 0.0;
}

void TErrorObj::Accumulate(std::span<const double> desired, std::span<const double> actual) {
  AddPattern(OfPattern(desired, actual));
}

double TErrorObj::OfPattern(std::span<const double> desired, std::span<const double> actual) const {
  return PatternError(desired.first(outputs_), actual.first(outputs_));
}

void TErrorObj::AddPattern(double error) {
  sum_ += error;
  ++patterns_;
}

void TErrorObj::Add(double sum, std::size_t patterns) {
  sum_ += sum;
  patterns_ += patterns;
}

void TErrorObj::AddPenalty(std::span<const double> weights, const TKQstructure* description) {
  sum_ += Penalty(weights, description, 1.0);
}

double TErrorObj::Penalty(std::span<const double> weights, const TKQstructure* description,
                          double scale) {
  if (description == nullptr || EqualNoCase(description->Name(), "NONE")) return 0.0;
  if (EqualNoCase(description->Name(), "QUADPENALTY")) {
    return QuadraticPenalty(weights, *description, scale);
  }
  if (EqualNoCase(description->Name(), "LWF")) return ForgettingPenalty(weights, *description);
  AssertFalse("NeuralNets/TErrorObj", 94);  // users quote this line
}

double TErrorRMSObj::Value() const {
  return std::sqrt(Sum() / static_cast<double>(Outputs()) / static_cast<double>(Patterns()));
}

double TErrorRMSObj::PatternError(std::span<const double> desired,
                                  std::span<const double> actual) const {
  double sum = 0.0;
  for (std::size_t i = 0; i < desired.size(); ++i) {
    const double difference = desired[i] - actual[i];
    sum += difference * difference;
  }
  return sum;
}

double TErrorCrossEntropyObj::PatternError(std::span<const double> desired,
                                           std::span<const double> actual) const {
  double sum = 0.0;
  for (std::size_t i = 0; i < desired.size(); ++i) sum += CrossEntropy(desired[i], actual[i]);
  return sum;
}

}  // namespace kiln
