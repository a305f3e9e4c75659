// A program of its own, since it counts all that it allocates.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>

#include "../Networks.h"
#include "Bramble/DeathCap.h"
#include "GA-Apps/GenTrain/TMLPGA.h"

static std::size_t allocations = 0;

[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  ++allocations;
  return std::malloc(size);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
  if (void* memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace kiln {
namespace {

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

TEST(Allocations, OfAGeneticRunDoNotGrowWithItsGenerations) {
  MetaChrom genome;
  for (int i = 0; i < 200; ++i) genome.Append(MetaGene::Real(0.0F, 1.0F));
  const auto run = [&genome](int generations) {
    DeathCap driver(genome);
    driver.Populate(100);
    FirstGene evaluator;
    Silent reporter;
    const std::size_t before = allocations;
    driver.Run({generations, 1000.0F, 2, 5, 0.01F}, evaluator, reporter);
    return allocations - before;
  };
  EXPECT_EQ(run(50), run(200));
}

// Networks that are recalled in blocks and, because of an absent connection, pattern by pattern.
TEST(Allocations, OfGeneticTrainingDoNotGrowWithItsGenerations) {
  const auto set = MakePatterns(100, 3, 2, 0.0, 1.0);
  for (const bool pruned : {false, true}) {
    const auto train = [&](int generations) {
      const auto network = MakePerceptron({3, 4, 2}, true);
      network->Connections(2, 1).SetExists(0, 0, !pruned);
      TMLPGA trainer(network, {-1.0F, 1.0F}, 20);
      trainer.Initialise();
      const std::array<const Data*, 1> sets = {set.get()};
      const std::size_t before = allocations;
      trainer.Train({.IntGenerations = generations}, 0.0, sets);
      return allocations - before;
    };
    EXPECT_EQ(train(5), train(50)) << pruned;
  }
}

}  // namespace
}  // namespace kiln
