// A program of its own, since it counts all that it allocates.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>

#include "../Networks.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "KQmessage/TKQstructure.h"
#include "Tarn/TTarnBP.h"

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

// 100 networks of 201 weights, which are recalled in blocks or, because of an absent connection,
// pattern by pattern.
TEST(Allocations, OfGeneticTrainingDoNotGrowWithItsGenerations) {
  const auto set = MakePatterns(20, 8, 5, 0.0, 1.0);
  for (const bool pruned : {false, true}) {
    const auto train = [&](int generations) {
      const auto network = MakePerceptron({8, 14, 5}, true);
      network->Connections(2, 1).SetExists(0, 0, !pruned);
      TMLPGA trainer(network, {-1.0F, 1.0F}, 100);
      trainer.Initialise();
      const std::size_t before = allocations;
      trainer.Train({generations, 0.0F, 2, 5, 0.01F}, 0.0, std::array<const Data*, 1>{set.get()});
      return allocations - before;
    };
    EXPECT_EQ(train(50), train(200)) << pruned;
  }
}

TEST(Allocations, OfTrainingByAnyMethodDoNotGrowWithItsEpochs) {
  const auto set = MakePatterns(40, 3, 2, 0.0, 1.0);
  const auto train = [&](TTrainModule&& trainer, const std::string& settings, int epochs) {
    TKQstructure params = TKQstructure::Parse("(P " + settings + ")");
    const std::size_t before = allocations;
    trainer.Train(*set, params, epochs);
    return allocations - before;
  };
  for (const char* settings :
       {":LearningRate 0.1", ":LearningRate 0.1 :batch 5", ":Method rprop", ":Method adam",
        ":Method levenberg", ":Method levenberg :WeightPenalty (LWF :ForgettingRate 0.1)"}) {
    const auto perceptron = [&](int epochs) {
      return train(TBackpropModule(MakePerceptron({3, 4, 2}, true)), settings, epochs);
    };
    const auto tarn = [&](int epochs) {
      const auto network = std::make_shared<TTarn>(TSizes{3, 3, 3}, 4, TSizes{3, 3});
      return train(TTarnBP(network), settings, epochs);
    };
    EXPECT_EQ(perceptron(3), perceptron(30)) << settings;
    EXPECT_EQ(tarn(3), tarn(30)) << settings;
  }
}

}  // namespace
}  // namespace kiln
