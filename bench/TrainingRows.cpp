// Perceptrons and fuzzy networks: training and recall.

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "KilnWork.h"
#include "MultiplyPeak.h"
#include "Peers.h"
#include "Rows.h"
#include "TReport.h"
#include "Tarn/TTarnBP.h"

namespace kiln {

namespace {

constexpr int kPatterns = 1000;

struct TShapeGoal {
  std::vector<int> sizes;
  double goal;
};

void AddPatternRows(TReport& report) {
  const std::array<TShapeGoal, 5> shapes = {{{{2, 4, 1}, 1.5},
                                             {{4, 8, 3}, 1.5},
                                             {{16, 32, 8}, 3.0},
                                             {{64, 64, 10}, 3.0},
                                             {{784, 100, 10}, 3.0}}};
  for (const TShapeGoal& shape : shapes) {
    const TPerceptronTask task(shape.sizes, kPatterns);
    const std::string work = "training by pattern, " + task.Shape();
    if (!report.Wants(work)) continue;
    report.AddComparison(work, PerceptronTraining(task, false), "FANN", FannPatternTraining(task),
                         kPatterns, shape.goal);
  }
}

// The products and sums of an epoch: two forward and two for the gradient at each weight, and two
// back through each but those over inputs and bias.
double BatchOperations(const TPerceptronTask& task) {
  double operations = 0.0;
  for (std::size_t k = 1; k < task.sizes.size(); ++k) {
    const double from = task.sizes[k - 1];
    const double to = task.sizes[k];
    operations += (from + 1.0) * to * 4.0 + (k > 1 ? from * to * 2.0 : 0.0);
  }
  return operations * kPatterns;
}

void AddBatchRows(TReport& report, const TScratch& scratch) {
  for (const std::vector<int>& sizes :
       {std::vector{64, 64, 10}, {784, 100, 10}, {784, 1000, 10}, {784, 2000, 1000, 10}}) {
    const TPerceptronTask task(sizes, kPatterns);
    const std::string work = "training by batch, " + task.Shape();
    if (!report.Wants(work)) continue;
    const TWork kiln = PerceptronTraining(task, true);
    if (sizes[1] < 1000) {  // FANN would take minutes
      report.AddComparison(work, kiln, "FANN", FannBatchTraining(task), kPatterns, 8.0);
    }
    report.AddComparison(work, kiln, "scikit-learn", ScikitTraining(scratch, task), kPatterns, 1.2);
    report.AddShare(work + ", operations", kiln, BatchOperations(task), MultiplyPeak(),
                    kPeakOperations, 0.3);
  }
}

// 609 weights. The perceptron beside it has 607, in as many layers that learn.
void AddTarnRow(TReport& report) {
  const std::string work = "training a Tarn by pattern, 5×4-20-3×3";
  if (!report.Wants(work)) return;
  const TPerceptronTask task({4, 20, 21, 3}, kPatterns);
  const auto tarn = std::make_shared<TTarn>(std::array{5, 5, 5, 5}, 20, std::array{3, 3, 3});
  tarn->InitWeights(-0.5, 0.5);
  report.AddComparison(work, Training(std::make_shared<TTarnBP>(tarn), task.data, false),
                       "FANN, " + task.Shape(), FannPatternTraining(task), kPatterns, 1.0);
}

}  // namespace

void AddTrainingRows(TReport& report, const TScratch& scratch) {
  AddPatternRows(report);
  AddBatchRows(report, scratch);
  AddTarnRow(report);
}

void AddRecallRows(TReport& report) {
  const std::array<TShapeGoal, 5> shapes = {{{{2, 4, 1}, 1.5},
                                             {{4, 8, 3}, 1.5},
                                             {{16, 32, 8}, 4.0},
                                             {{64, 64, 10}, 4.0},
                                             {{784, 100, 10}, 4.0}}};
  for (const TShapeGoal& shape : shapes) {
    const TPerceptronTask task(shape.sizes, kPatterns);
    const std::string work = "recall of a set, " + task.Shape();
    if (!report.Wants(work)) continue;
    report.AddComparison(work, Recall(task), "FANN", FannRecall(task), kPatterns, shape.goal);
  }
}

}  // namespace kiln
