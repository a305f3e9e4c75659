// The time until an error is small enough, medians over five seeds.

#include <functional>
#include <vector>

#include "Peers.h"
#include "Rows.h"
#include "TArrivalTask.h"
#include "TReport.h"

namespace kiln {

namespace {

constexpr int kSeeds = 5;
constexpr double kGoal = 5.0;

double MedianArrival(const std::function<double(int seed)>& arrival) {
  std::vector<double> seconds;
  for (int seed = 1; seed <= kSeeds; ++seed) seconds.push_back(arrival(seed));
  return Median(seconds);
}

void AddRows(TReport& report, const TScratch& scratch, const TArrivalTask& task, double error,
             const std::string& work) {
  if (!report.Wants(work)) return;
  const double kiln = MedianArrival([&](int seed) { return KilnArrival(task, error, seed); });
  const auto add = [&](const char* name, const TArrival& peer) {
    if (!peer) return report.AddArrival(work, kiln, name, std::nullopt, kGoal);
    report.AddArrival(work, kiln, name, MedianArrival([&](int seed) { return peer(seed); }), kGoal);
  };
  add("FANN, rprop", FannArrival(task, error));
  add("scikit-learn, L-BFGS", ScikitArrival(scratch, task, "lbfgs", error));
  add("scikit-learn, Adam", ScikitArrival(scratch, task, "adam", error));
}

}  // namespace

void AddArrivalRows(TReport& report, const TScratch& scratch) {
  const TArrivalTask series = SeriesTask();
  AddRows(report, scratch, series, 0.06, "time to 0.06, " + series.name + ", levenberg");
  AddRows(report, scratch, series, 0.02, "time to 0.02, " + series.name + ", levenberg");
  const std::string tarn = "time to 0.02, Mackey-Glass, a Tarn of 16 rules";
  if (report.Wants(tarn)) {
    const double kiln =
        MedianArrival([&](int seed) { return KilnTarnArrival(series, 0.02, seed); });
    const double perceptron =
        MedianArrival([&](int seed) { return KilnArrival(series, 0.02, seed); });
    report.AddArrival(tarn, kiln, "the perceptron above", perceptron, 0.1);
  }
  const TArrivalTask iris = IrisTask();
  AddRows(report, scratch, iris, 0.1, "time to 0.1, " + iris.name + ", rprop");
  const TArrivalTask peaks = PeaksTask();
  AddRows(report, scratch, peaks, 0.05, "time to 0.05, " + peaks.name + ", levenberg");
}

}  // namespace kiln
