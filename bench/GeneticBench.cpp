// The genetic engine alone: what a generation costs apart from its evaluation.
#include <benchmark/benchmark.h>

#include <cstddef>

#include "Bramble/DeathCap.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

constexpr int kGenerations = 50;
constexpr std::size_t kIndividuals = 100;

// The first gene is the fitness.
class FirstGene : public Evaluator {
 public:
  void EvaluatePopulation(std::span<const MetaGene>, std::span<const std::span<GeneValue>> genes,
                          std::span<float> fitness) override {
    for (std::size_t i = 0; i < genes.size(); ++i) fitness[i] = genes[i].front().Real();
  }
};

class Silent : public Reporter {
 public:
  bool Report(const Population&) override { return true; }
};

// Arguments: genes, crossover points, elites. Counts generations as items.
void BM_Generations(benchmark::State& state) {
  MetaChrom genome;
  for (std::int64_t i = 0; i < state.range(0); ++i) genome.Append(MetaGene::Real(0.0F, 1.0F));
  Random::Seed(1);
  DeathCap driver(genome);
  driver.Populate(kIndividuals);
  FirstGene evaluator;
  Silent reporter;
  const RunSettings settings{.IntGenerations = kGenerations,
                             .FltTarget = 2.0F,
                             .NdxElites = static_cast<std::size_t>(state.range(2)),
                             .IntCrossover = static_cast<int>(state.range(1))};
  for (auto _ : state) benchmark::DoNotOptimize(driver.Run(settings, evaluator, reporter));
  state.SetItemsProcessed(state.iterations() * kGenerations);
}

BENCHMARK(BM_Generations)
    ->ArgNames({"genes", "points", "elites"})
    ->Args({20, 1, 1})
    ->Args({200, 1, 1})
    ->Args({1000, 1, 1})
    ->Args({200, 5, 1})
    ->Args({200, -1, 1})
    ->Args({200, 1, 10});

}  // namespace
}  // namespace kiln
