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

// Beside FANN.
constexpr double kSmallGoal = 1.6;
constexpr double kGoal = 5.0;
constexpr double kBatchGoal = 10.0;

struct TShapeGoal {
  std::vector<int> sizes;
  double goal;
};

void AddPatternRows(TReport& report) {
  const std::array<TShapeGoal, 5> shapes = {{{{2, 4, 1}, kSmallGoal},
                                             {{4, 8, 3}, kSmallGoal},
                                             {{16, 32, 8}, kGoal},
                                             {{64, 64, 10}, kGoal},
                                             {{784, 100, 10}, kGoal}}};
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
      report.AddComparison(work, kiln, "FANN", FannBatchTraining(task), kPatterns, kBatchGoal);
    }
    report.AddComparison(work, kiln, "scikit-learn", ScikitTraining(scratch, task), kPatterns, 1.2);
    report.AddShare(work + ", operations", kiln, BatchOperations(task), MultiplyPeak(),
                    kPeakOperations, 0.3);
  }
}

// A Tarn of 609 weights. The perceptron beside it has 607, in as many layers that learn.
class TTarnTask {
 public:
  TTarnTask() : perceptron_({4, 20, 21, 3}, kPatterns) { tarn_->InitWeights(-0.5, 0.5); }

  void AddTraining(TReport& report) const {
    const TWork by_pattern = Training(std::make_shared<TTarnBP>(tarn_), perceptron_.data, false);
    Add(report, "training a Tarn by pattern", by_pattern, "FANN", FannPatternTraining(perceptron_),
        1.0);
    const TWork by_batch = Training(std::make_shared<TTarnBP>(tarn_), perceptron_.data, true);
    Add(report, "training a Tarn by batch", by_batch, "Kiln", PerceptronTraining(perceptron_, true),
        0.8);
  }

  void AddRecall(TReport& report) const {
    Add(report, "recall of a set, a Tarn", Recall(tarn_, perceptron_.data), "Kiln",
        PerceptronRecall(perceptron_), 0.8);
  }

 private:
  void Add(TReport& report, const std::string& work, const TWork& tarn, const std::string& peer,
           const TWork& perceptron, double goal) const {
    const std::string row = work + ", 5×4-20-3×3";
    if (!report.Wants(row)) return;
    report.AddComparison(row, tarn, peer + ", " + perceptron_.Shape(), perceptron, kPatterns, goal);
  }

  TPerceptronTask perceptron_;
  std::shared_ptr<TTarn> tarn_ =
      std::make_shared<TTarn>(std::array{5, 5, 5, 5}, 20, std::array{3, 3, 3});
};

}  // namespace

void AddTrainingRows(TReport& report, const TScratch& scratch) {
  AddPatternRows(report);
  AddBatchRows(report, scratch);
  TTarnTask().AddTraining(report);
}

void AddRecallRows(TReport& report) {
  const std::array<TShapeGoal, 5> shapes = {{{{2, 4, 1}, kSmallGoal},
                                             {{4, 8, 3}, kSmallGoal},
                                             {{16, 32, 8}, kGoal},
                                             {{64, 64, 10}, kGoal},
                                             {{784, 100, 10}, kGoal}}};
  for (const TShapeGoal& shape : shapes) {
    const TPerceptronTask task(shape.sizes, kPatterns);
    const std::string work = "recall of a set, " + task.Shape();
    if (!report.Wants(work)) continue;
    report.AddComparison(work, PerceptronRecall(task), "FANN", FannRecall(task), kPatterns,
                         shape.goal);
  }
  TTarnTask().AddRecall(report);
}

}  // namespace kiln
