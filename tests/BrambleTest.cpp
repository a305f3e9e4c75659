#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

#include "Bramble/DeathCap.h"
#include "Failures.h"
#include "Shared/Random.h"

namespace kiln {
namespace {

using Genome = std::shared_ptr<const MetaChrom>;

// The generator, written out once more.
struct Literal {
  explicit Literal(std::uint32_t seed) : state(seed) { Random::Seed(seed); }
  int Next() { return static_cast<int>((state = state * 22695477U + 1U) >> 16) & 32767; }
  std::size_t Draw(std::size_t n) { return static_cast<std::size_t>(Next()) % n; }
  std::uint32_t state;
};

Genome Repeated(std::size_t times, const std::vector<MetaGene>& kinds) {
  MetaChrom genome;
  for (std::size_t i = 0; i < times * kinds.size(); ++i) genome.Append(kinds[i % kinds.size()]);
  return std::make_shared<const MetaChrom>(genome);
}

Genome Reals(std::size_t length) {
  return Repeated(length, {MetaGene::Real(0.0F, 1.0F)});
}

// Genes step, 2 * step, 3 * step and so on.
Individual Counting(std::uint32_t identifier, const Genome& genome, float step) {
  std::vector<GeneValue> values;
  for (std::size_t i = 1; i <= genome->Length(); ++i) {
    values.push_back(GeneValue::OfReal(step * static_cast<float>(i)));
  }
  return {identifier, Chromosome::Of(genome, values)};
}

Population WithFitness(const std::vector<float>& fitness) {
  Population population(1, fitness.size(), Reals(2));
  population.SetFitness(fitness);
  return population;
}

using Identifiers = std::vector<std::uint32_t>;

Identifiers IdentifiersOf(const Population& population) {
  Identifiers identifiers;
  for (const Individual& one : population.Individuals()) identifiers.push_back(one.Identifier());
  return identifiers;
}

// What the k-th kind of gene of the next test mutates to.
GeneValue LiteralValue(Literal& literal, std::size_t k) {
  if (k == 0) return GeneValue::OfReal(static_cast<float>(-2 + 5 * (literal.Next() / 32767.0)));
  if (k == 1) return GeneValue::OfBoolean(literal.Draw(1001) <= 300);
  std::int64_t draw = literal.Next();
  for (std::size_t more = 2; more < k; ++more) draw = draw * 32768 + literal.Next();
  draw = k == 2 ? 3 : k == 3 ? draw % 40006 - 5 : draw % (1LL << 32) - (1LL << 31);
  return GeneValue::OfInteger(static_cast<std::int32_t>(draw));
}

TEST(GeneticMutation, IsTheLiteralCalculation) {
  const Genome genome =
      Repeated(2000, {MetaGene::Real(-2.0F, 3.0F), MetaGene::Boolean(0.3F), MetaGene::Integer(3, 3),
                      MetaGene::Integer(-5, 40000), MetaGene::Integer(INT32_MIN, INT32_MAX)});
  for (const float probability : {0.0F, 0.0004F, 0.001F, 0.05F, 0.5F, 1.0F}) {
    Literal literal(17);
    Chromosome mutated = Chromosome::Of(genome, std::vector<GeneValue>(10000));
    ASSERT_EQ(mutated.Mutate(probability), GeneticStatus::SUCCESS);
    const auto threshold = static_cast<std::size_t>(probability * 1000.0);
    for (std::size_t i = 0; i < 10000; ++i) {
      const bool hit = probability > 0.0F && literal.Draw(1001) <= threshold;
      const GeneValue expected = hit ? LiteralValue(literal, i % 5) : GeneValue();
      ASSERT_EQ(mutated.At(i + 1).GvlValue, expected) << probability << " gene " << i + 1;
      ASSERT_EQ(mutated.At(i + 1).BolChanged, hit);
    }
    EXPECT_EQ(Random::Next(), literal.Next()) << probability;
  }
}

TEST(GeneticMutation, StopsAtTheFirstGeneThatRefuses) {
  Population population(1, 2, Repeated(2, {MetaGene::Integer(1, 9), MetaGene::Undefined()}));
  EXPECT_EQ(population.Mutate(1.0F), GeneticStatus::kGeneUndefined);
  population.At(1).Genes().SetMutable(1, false);
  const Gene refusing = population.At(1).Genes().At(1);
  EXPECT_EQ(population.Mutate(1.0F), GeneticStatus::kGeneImmutable);
  EXPECT_EQ(population.At(1).Genes().At(1), refusing);
  EXPECT_FALSE(population.At(2).Genes().At(1).BolChanged);
}

// The child of A, genes 1, 2, .., and B, genes -1, -2, .., as the forms are laid down.
std::vector<float> LiteralChild(Literal& literal, std::size_t length, int points) {
  const float first = literal.Draw(1001) < 501 ? -1.0F : 1.0F;
  std::vector<float> genes(length, -first);
  const auto k = static_cast<std::size_t>(points);
  if (points == 1) {
    std::fill_n(genes.begin(), literal.Draw(length), first);
  } else if (points < 0 || points >= static_cast<int>(length) - 1) {
    for (float& gene : genes) gene = literal.Draw(1001) < 501 ? first : -first;
  } else {
    std::vector<std::size_t> cuts(k + 2, 1);
    for (std::size_t i = 1; i <= k; ++i) cuts[i] += literal.Draw(length - k);
    cuts[k + 1] = length + 1;
    std::ranges::sort(cuts);
    for (std::size_t i = 1; i <= k; ++i) cuts[i] += i;
    for (std::size_t s = 1; s <= k; s += 2) {
      for (std::size_t i = cuts[s]; i < cuts[s + 1]; ++i) genes[i - 1] = first;
    }
  }
  for (std::size_t i = 0; i < length; ++i) genes[i] *= static_cast<float>(i + 1);
  return genes;
}

TEST(GeneticCrossover, EveryFormIsTheLiteralCalculation) {
  for (const std::size_t length : {1U, 2U, 3U, 4U, 25U}) {
    const Individual a = Counting(7, Reals(length), 1.0F);
    const Individual b = Counting(8, Reals(length), -1.0F);
    for (const int points : {-3, 0, 1, 2, 3, 7, 23, 24, 1000}) {
      Literal literal(static_cast<std::uint32_t>(points + 50));
      for (int repetition = 0; repetition < 40; ++repetition) {
        const Individual child = a.Mate(b, points);
        const std::vector<float> expected = LiteralChild(literal, length, points);
        ASSERT_TRUE(std::ranges::equal(child.Genes().Values(), expected, {}, &GeneValue::Real))
            << length << " genes, " << points << " points";
        ASSERT_EQ(child.FirstParent(), 7U);
        ASSERT_EQ(child.SecondParent(), 8U);
        ASSERT_EQ(Random::Next(), literal.Next());
      }
    }
    EXPECT_EQ(BrokenCheck([&] { a.Mate(Counting(9, Reals(5), 1.0F), 1); }),
              "NdxMateChromLength == NdxChromLength");
  }
}

TEST(GeneticChromosome, IsCutAndPutTogetherByItsGenome) {
  const Genome genome = Repeated(
      1, {MetaGene::Real(1, 1), MetaGene::Boolean(1), MetaGene::Real(3, 3), MetaGene::Undefined()});
  Chromosome whole = Chromosome::Random(genome);
  whole.SetMutable(3, false);
  const Chromosome middle = whole.Slice(2, 3);
  Chromosome copy(genome);
  EXPECT_EQ(BrokenCheck([&] { copy.Append(middle.At(1)); }), "MgnGene == MgnExpected");
  for (const Gene& gene : {whole.At(1), middle.At(1), middle.At(2), whole.At(4)}) copy.Append(gene);
  EXPECT_EQ(BrokenCheck([&] { copy.Append(whole.At(4)); }), "PtrMgnCurrent != 0");
  for (std::size_t i = 1; i <= 4; ++i) EXPECT_EQ(copy.At(i), whole.At(i));
  EXPECT_EQ(BrokenCheck([] { MetaGene::Real(0.0F, NAN); }), "FltLower <= FltUpper");
}

TEST(GeneticSelection, FillsTheWheelByShares) {
  const std::map<std::vector<float>, std::vector<std::ptrdiff_t>> cases = {
      {{1, 2, 3, 0, 1}, {7, 14, 21, 0, 7}},
      {{100, 0.3F, 0, -1}, {40, 0, 0, 0}},
      {{INFINITY, INFINITY}, {10, 10}}};
  for (const auto& [fitness, places] : cases) {
    Population population = WithFitness(fitness);
    population.BuildWheel();
    for (std::uint32_t i = 1; i <= fitness.size(); ++i) {
      EXPECT_EQ(std::ranges::count(population.Wheel(), i), places[i - 1]) << fitness[i - 1];
    }
  }
  for (const std::vector<float>& fitness : {std::vector<float>{0, NAN}, {1, -3}}) {
    EXPECT_EQ(BrokenCheck([&] { WithFitness(fitness).SelectRoulette(); }),
              "MbrNdxMaxWheelIndex > 0");
  }
}

TEST(GeneticSelection, DrawsFromTheWheel) {
  Population population = WithFitness({1, 2, 3, 2});
  population.BuildWheel();
  Literal literal(5);
  const auto spin = [&, wheel = population.Wheel()]() -> const Individual& {
    return population.At(wheel[literal.Draw(wheel.size())]);
  };
  for (int i = 0; i < 200; ++i) {
    ASSERT_EQ(&population.SelectRoulette(), &spin());
    const Individual& one = spin();
    const Individual& two = spin();
    ASSERT_EQ(&population.SelectTournament(), one.Fitness() > two.Fitness() ? &one : &two);
  }
  population.SetFitness(std::vector<float>{0, 0, 5, 0});
  EXPECT_EQ(&population.SelectRoulette(), &population.At(3));
}

TEST(GeneticFitness, IsScaledAndRanked) {
  Population population = WithFitness({-2, 6, 0, 6, NAN});
  EXPECT_EQ(population.Statistics().DblAverage, 2.0);
  EXPECT_EQ(population.ScaleFitness(ScalingMethod{30}), GeneticStatus::kUnknownScaling);
  EXPECT_EQ(population.ScaleFitness(ScalingMethod::kLinear), GeneticStatus::SUCCESS);
  EXPECT_EQ(population.At(3).Fitness(), 0.25F);
  EXPECT_EQ(population.Statistics().FltMaximum, 1.0F);

  Population elites(2, 0, population.Genome());
  EXPECT_EQ(elites.AddElites(nullptr, 1), GeneticStatus::kNoElites);
  EXPECT_EQ(elites.AddElites(&population, 1), GeneticStatus::SUCCESS);
  EXPECT_EQ(elites.AddElites(&population, 3), GeneticStatus::SUCCESS);
  EXPECT_EQ(IdentifiersOf(elites), (Identifiers{4, 5, 2, 4}));
}

TEST(GeneticPopulation, IsCutAndPutTogether) {
  const Population whole = WithFitness({3, 1, 2});
  const Population part = whole.SubPopulation(2, 3);
  EXPECT_EQ(IdentifiersOf(part), (Identifiers{2, 3}));
  EXPECT_EQ(part.Statistics().DblAverage, 1.5);
  Population sum(2, 0, whole.Genome());
  sum.AddAll(whole);
  sum.AddAll(part);
  EXPECT_EQ(IdentifiersOf(sum), (Identifiers{1, 2, 3, 2, 3}));
  EXPECT_EQ(BrokenCheck([&] { whole.SubPopulation(3, 4); }), "PtrIdvCurrent != 0");
}

// Fitness is the sum of the genes; `OnGenes` sees them first.
class Sum : public Evaluator {
 public:
  std::function<void(std::span<GeneValue>)> OnGenes = [](auto) {};
  void EvaluatePopulation(std::span<const MetaGene>, std::span<const std::span<GeneValue>> genes,
                          std::span<float> fitness) override {
    for (std::size_t i = 0; i < genes.size(); ++i) {
      OnGenes(genes[i]);
      for (const GeneValue value : genes[i]) fitness[i] += value.Real();
    }
  }
};

class Recorder : public Reporter {
 public:
  std::vector<float> Best;
  bool Report(const Population& evaluated) override {
    Best.push_back(evaluated.Best().FltFitness);
    EXPECT_EQ(evaluated.Generation(), Best.size());
    return true;
  }
};

class GeneticRun : public testing::Test {
 protected:
  void SetUp() override {
    Random::Seed(3);
    driver.Populate(19);
    driver.Seed(std::vector<GeneValue>(12, GeneValue::OfReal(0.5F)));
  }
  std::vector<float> Bests(const RunSettings& settings) {
    Recorder recorder;
    EXPECT_EQ(driver.Run(settings, evaluator, recorder), GeneticStatus::SUCCESS);
    return recorder.Best;
  }
  DeathCap driver{*Reals(12)};
  Sum evaluator;
};

TEST_F(GeneticRun, HandsRepairsDown) {
  int seen = 0;
  evaluator.OnGenes = [&seen](std::span<GeneValue> genes) {
    EXPECT_EQ(genes[4].Real() == 0.25F, ++seen > 20);
    genes[4] = GeneValue::OfReal(0.25F);
  };
  EXPECT_EQ(Bests({6, 100.0F, 1, 3, 0.0F}).size(), 6U);
}

TEST_F(GeneticRun, StartsFromGenesWrittenIntoTheExport) {
  const auto genes = driver.ExportCurrent();
  std::ranges::fill(genes.back(), GeneValue::OfReal(2.0F));
  EXPECT_EQ(Bests({.IntGenerations = 1}), std::vector<float>{24.0F});
  EXPECT_EQ(driver.ExportGenome().size(), 12U);
}

}  // namespace
}  // namespace kiln
