#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "NeuralNets/TTeamRecall.h"
#include "NeuralNets/Training/TLayerwisePass.h"
#include "NeuralNets/Training/TNormalEquations.h"
#include "NeuralNets/Training/TTrainPass.h"
#include "NeuralNets/Training/TTrainRun.h"
#include "NeuralNets/Training/TTrainState.h"

namespace kiln {

// Levenberg-Marquardt: a run over the set is one step towards the least sum of squares. With r the
// residuals y - t of all outputs of all rows, and J their derivatives by the weights that learn,
//   (J'J + l D) s = J'r,  w = w - s,
// where D is the diagonal of J'J with a share of its mean added, so that a weight that hardly
// matters is held as well. The step is taken when half the sum of squares with the price of the
// penalty falls, and l becomes smaller; otherwise l grows, faster and faster, and the step is tried
// again. When l is so large that no step is left the weights are at a minimum, as far as numbers
// can tell, and the rest of the runs change nothing.
//
// A quadratic penalty adds a residual for each weight, forgetting its subgradient; a step of
// forgetting ends at 0 where it would change the sign of a weight.
class TLevenbergPass : public TTrainPass {
 public:
  // The matrix has at most so many numbers, 1 GiB.
  static constexpr std::size_t kMaxNumbers = std::size_t{1} << 27;

  // `derivatives` finds the derivatives of outputs. REQUIRES: it adds gradients, for the same state
  // and run, which outlive the pass. Throws TException when the error to be minimised is no sum of
  // squares, or too many weights learn.
  TLevenbergPass(TTrainState& state, const TTrainRun& run,
                 std::unique_ptr<TLayerwisePass> derivatives);

  // Leaves in `error` that of the weights that are reached. REQUIRES: all rows of the set.
  void Run(const Data& data, int first, int last, TErrorObj& error) override;

 protected:
  // Sets what a change of each weight is measured in, which is 1 to begin with: how much a weight
  // that hardly matters is held back goes by it. Called before each step.
  virtual void SetUnits(TWeightBuffer&) {}

  // Called after each step, with the weights before it: a network whose weights have to obey a rule
  // makes them obey.
  virtual void StepTaken(const TWeightBuffer&) {}

 private:
  // A weight that learns, and its place among the numbers of a TWeightBuffer.
  struct TUnknown {
    double* weight;
    const double* gradient;
    std::size_t place;
    bool is_penalised;
  };

  void FindUnknowns();
  double Linearise(const Data& data);
  void AddPenalty();
  void SetScales();
  bool TrySteps(const Data& data, double price, TErrorObj& error);
  bool MakeStep(double damping);
  double PriceNow(const Data& data, TErrorObj& error);
  double PenaltyPrice() const;

  TTrainState& state_;
  const TTrainRun& run_;
  std::unique_ptr<TLayerwisePass> derivatives_;
  TTeamRecall recall_;
  TWeightBuffer before_;  // the weights that a step starts from
  std::vector<TUnknown> unknowns_;
  TWeightBuffer units_;
  std::vector<double> scales_;  // D
  std::vector<double> step_;    // s
  std::unique_ptr<TNormalEquations> equations_;
  std::unique_ptr<TCholesky> cholesky_;
  bool is_at_minimum_ = false;
};

}  // namespace kiln
