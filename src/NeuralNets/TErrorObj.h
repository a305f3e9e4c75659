#pragma once

#include <cstddef>
#include <span>

namespace kiln {

class TKQstructure;

// A measure of the distance between desired and actual outputs, summed up pattern by pattern.
class TErrorObj {
 public:
  // For patterns of `outputs` values.
  explicit TErrorObj(std::size_t outputs) : outputs_(outputs) {}
  virtual ~TErrorObj() = default;

  void Reset();

  // Adds one pattern. REQUIRES: a desired and an actual value for each output.
  void Accumulate(std::span<const double> desired, std::span<const double> actual);

  // The same in two steps, of which the first leaves the measure as it is.
  double OfPattern(std::span<const double> desired, std::span<const double> actual) const;
  void AddPattern(double error);

  // Adds what another measure of the same kind has summed up over so many patterns.
  void Add(double sum, std::size_t patterns);

  // The error so far.
  virtual double Value() const = 0;

  // The sum over the patterns, and of penalties once they have been added.
  double Sum() const { return sum_; }

  std::size_t Patterns() const { return patterns_; }

  // Adds Penalty(weights, description, 1.0) to the sum.
  void AddPenalty(std::span<const double> weights, const TKQstructure* description);

  // The price of large weights. The description is a message headed
  //   NONE         0, as without a description
  //   QUADPENALTY  scale * sum(EPSILON1 * BETA * w^2 / (BETA * w^2 + 1) + EPSILON2 * w^2)
  //   LWF          LEARNINGRATE * FORGETTINGRATE * sum(|w|)
  // in any case; the constants are its values, 0 where they are missing but 1 for BETA.
  // Throws TAssertion for any other head and TException for a constant that is no number.
  static double Penalty(std::span<const double> weights, const TKQstructure* description,
                        double scale);

 protected:
  virtual double PatternError(std::span<const double> desired,
                              std::span<const double> actual) const = 0;

  std::size_t Outputs() const { return outputs_; }

 private:
  std::size_t outputs_;
  std::size_t patterns_ = 0;
  double sum_ = 0.0;
};

// The root of the mean of (t - y)^2 over all outputs of all patterns; NaN without patterns.
class TErrorRMSObj : public TErrorObj {
 public:
  using TErrorObj::TErrorObj;
  double Value() const override;

 private:
  double PatternError(std::span<const double> desired,
                      std::span<const double> actual) const override;
};

// The sum of -t ln(y) - (1 - t) ln(1 - y), over all outputs of all patterns, not averaged. An
// output of exactly 1 counts 1000000 unless 1 was desired; an output of exactly 0 counts what the
// logarithm gives.
class TErrorCrossEntropyObj : public TErrorObj {
 public:
  using TErrorObj::TErrorObj;
  double Value() const override { return Sum(); }

 private:
  double PatternError(std::span<const double> desired,
                      std::span<const double> actual) const override;
};

}  // namespace kiln
