// Training and recall of perceptrons: nanoseconds for each weight and pattern.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "DataObject/Data.h"
#include "KQmessage/TKQstructure.h"
#include "NeuralNets/TBackpropModule.h"
#include "NeuralNets/TMLPNetwork.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

constexpr int kPatterns = 256;

// The sizes of the layers of a perceptron with a bias, and a set of random patterns for it.
struct TTask {
  explicit TTask(const std::vector<int>& sizes)
      : network(std::make_shared<TMLPNetwork>(sizes, true)),
        data(kPatterns, sizes.front(), sizes.back(), false) {
    network->Randomize(-0.5, 0.5);
    std::vector<double> input(static_cast<std::size_t>(sizes.front()));
    std::vector<double> output(static_cast<std::size_t>(sizes.back()));
    for (int n = 0; n < kPatterns; ++n) {
      for (double& value : input) value = Random::Uniform(0.0, 1.0);
      for (double& value : output) value = Random::Uniform(0.1, 0.9);
      data.AddRow(input, output);
    }
  }

  void Report(benchmark::State& state) const {
    const auto steps = static_cast<double>(network->GetNumWeights(FMaskAll)) * kPatterns;
    state.counters["per_weight"] = benchmark::Counter(
        steps, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
    state.counters["per_pattern"] = benchmark::Counter(
        kPatterns, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
  }

  std::shared_ptr<TMLPNetwork> network;
  Data data;
};

void Train(benchmark::State& state, const std::vector<int>& sizes, const std::string& params) {
  TTask task(sizes);
  TBackpropModule trainer(task.network);
  TKQstructure settings = TKQstructure::Parse(params);
  for (auto _ : state) benchmark::DoNotOptimize(trainer.Epoch(task.data, settings));
  task.Report(state);
}

void Recall(benchmark::State& state, const std::vector<int>& sizes) {
  TTask task(sizes);
  TErrorRMSObj error(static_cast<std::size_t>(sizes.back()));
  for (auto _ : state) {
    error.Reset();
    benchmark::DoNotOptimize(task.network->RecallError(&task.data, &error));
  }
  task.Report(state);
}

bool RegisterAll() {
  const std::vector<std::vector<int>> networks = {
      {2, 4, 1}, {4, 8, 3}, {16, 32, 8}, {64, 64, 10}, {784, 100, 10}};
  const std::vector<std::pair<std::string, std::string>> trainings = {
      {"Pattern", "(Params :LearningRate 0.01)"},
      {"PatternMomentum", "(Params :LearningRate 0.01 :Momentum 0.5)"},
      {"PatternForgetting",
       "(Params :LearningRate 0.01 :WeightPenalty (LWF :ForgettingRate 0.0001))"},
      {"Batch", "(Params :LearningRate 0.001 :Batch true)"}};
  for (const auto& sizes : networks) {
    std::string shape;
    for (const int size : sizes)
      shape += std::string(shape.empty() ? "" : "-").append(std::to_string(size));
    for (const auto& training : trainings) {
      benchmark::RegisterBenchmark((training.first + "/" + shape).c_str(), Train, sizes,
                                   training.second);
    }
    benchmark::RegisterBenchmark(("Recall/" + shape).c_str(), Recall, sizes);
  }
  return true;
}

[[maybe_unused]] const bool kRegistered = RegisterAll();

}  // namespace
}  // namespace kiln
