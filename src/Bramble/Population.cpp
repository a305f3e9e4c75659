#include "Bramble/Population.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "Bramble/Status.h"
#include "Shared/Random.h"
#include "Shared/TAssertion.h"

namespace kiln {

Population::Population(std::uint32_t generation, std::size_t size,
                       std::shared_ptr<const MetaChrom> genome)
    : MbrNdxGeneration(generation), MbrPtrMchGenome(std::move(genome)) {
  Assert(MbrPtrMchGenome != nullptr, "PtrMchGenome != 0", kBrambleModule);
  MbrDyaIdvIndividuals.reserve(size);
  for (std::size_t position = 1; position <= size; ++position) {
    MbrDyaIdvIndividuals.emplace_back(static_cast<std::uint32_t>(position),
                                      Chromosome::Random(MbrPtrMchGenome));
  }
  MbrNdxPopSize = size;
}

std::size_t Population::IndexOf(std::size_t position) const {
  Assert(position >= 1 && position <= MbrNdxPopSize, "PtrIdvCurrent != 0", kBrambleModule);
  return position - 1;
}

void Population::Restart(std::uint32_t generation, std::shared_ptr<const MetaChrom> genome) {
  Assert(genome != nullptr, "PtrMchGenome != 0", kBrambleModule);
  MbrNdxPopSize = 0;
  MbrNdxGeneration = generation;
  MbrNdxMaxWheelIndex = 0;
  MbrStsFitness = {};
  MbrPtrMchGenome = std::move(genome);
}

// One more live individual: a spare one, whose contents are the caller's to replace, or a new one.
Individual& Population::Extend() {
  MbrNdxMaxWheelIndex = 0;
  if (MbrNdxPopSize == MbrDyaIdvIndividuals.size()) {
    MbrDyaIdvIndividuals.emplace_back(0, Chromosome(MbrPtrMchGenome));
  }
  return MbrDyaIdvIndividuals[MbrNdxPopSize++];
}

void Population::Add(const Individual& individual) {
  const std::shared_ptr<const MetaChrom>& genome = individual.Genes().Genome();
  Assert(genome == MbrPtrMchGenome || *genome == *MbrPtrMchGenome,
         "MchIndividual == MchPopulation");
  Extend() = individual;
}

void Population::AddRange(const Population& source, std::size_t first, std::size_t last) {
  for (std::size_t position = first; position <= last; ++position) Add(source.At(position));
}

Population Population::SubPopulation(std::size_t first, std::size_t last) const {
  Population population(MbrNdxGeneration, 0, MbrPtrMchGenome);
  population.AddRange(*this, first, last);
  population.ComputeStatistics();
  return population;
}

void Population::SortByFitness() {
  MbrNdxMaxWheelIndex = 0;
  MbrDyaNdxRanking.resize(MbrNdxPopSize);
  std::iota(MbrDyaNdxRanking.begin(), MbrDyaNdxRanking.end(), 0U);
  std::ranges::sort(MbrDyaNdxRanking, {}, [this](std::uint32_t index) {
    return std::pair(MbrDyaIdvIndividuals[index].Fitness(), index);
  });
  for (std::size_t place = 0; place < MbrNdxPopSize; ++place) {
    std::size_t from = MbrDyaNdxRanking[place];
    while (from < place) from = MbrDyaNdxRanking[from];  // where an earlier swap has put it
    std::swap(MbrDyaIdvIndividuals[place], MbrDyaIdvIndividuals[from]);
  }
}

void Population::Export(std::vector<std::span<GeneValue>>& genes) {
  genes.clear();
  for (Individual& individual : Individuals()) genes.push_back(individual.Genes().Values());
}

void Population::SetFitness(std::span<const float> fitness) {
  Assert(fitness.size() == MbrNdxPopSize, "NdxFitnessSize == NdxPopSize");
  for (std::size_t index = 0; index < fitness.size(); ++index) {
    MbrDyaIdvIndividuals[index].SetFitness(fitness[index]);
  }
  ComputeStatistics();
}

void Population::ComputeStatistics() {
  Assert(MbrNdxPopSize != 0, "NdxPopSize != 0", kBrambleModule);
  MbrNdxMaxWheelIndex = 0;
  const float first = MbrDyaIdvIndividuals.front().Fitness();
  FitnessStatistics statistics{.FltMaximum = first, .FltMinimum = first};
  for (const Individual& individual : Individuals()) {
    statistics.FltMaximum = std::max(statistics.FltMaximum, individual.Fitness());
    statistics.FltMinimum = std::min(statistics.FltMinimum, individual.Fitness());
    statistics.DblTotal += static_cast<double>(individual.Fitness());
  }
  statistics.DblAverage = statistics.DblTotal / static_cast<double>(MbrNdxPopSize);
  MbrStsFitness = statistics;
}

BestIndividual Population::Best() const {
  Assert(MbrNdxPopSize != 0, "PtrIdvElite != 0", kBrambleModule);
  std::size_t best = 0;
  for (std::size_t index = 1; index < MbrNdxPopSize; ++index) {
    if (MbrDyaIdvIndividuals[index].Fitness() >= MbrDyaIdvIndividuals[best].Fitness()) best = index;
  }
  return {best + 1, MbrDyaIdvIndividuals[best].Fitness()};
}

GeneticStatus Population::ScaleFitness(ScalingMethod method) {
  if (method != ScalingMethod::kLinear) return GeneticStatus::kUnknownScaling;
  // In double precision: the difference of two single numbers may be no single number.
  const double minimum = MbrStsFitness.FltMinimum;
  const double range = MbrStsFitness.FltMaximum - minimum;
  for (Individual& individual : Individuals()) {
    individual.SetFitness(
        range == 0.0 ? 0.5F : static_cast<float>((individual.Fitness() - minimum) / range));
  }
  ComputeStatistics();
  return GeneticStatus::SUCCESS;
}

// The number of places that an individual takes on the wheel. Fitnesses below 0 lower the total, so
// that the share of others can exceed the whole wheel: it is cut to the room that is left.
std::size_t Population::PlacesOf(const Individual& individual, std::size_t room) const {
  if (!(individual.Fitness() > 0.0F)) return 0;
  const auto size = static_cast<double>(MbrNdxPopSize);
  const double places = static_cast<double>(individual.Fitness()) / MbrStsFitness.DblTotal *
                        static_cast<double>(kPlacesEach) * size;
  if (!(places >= 1.0)) return 0;
  return places < static_cast<double>(room) ? static_cast<std::size_t>(places) : room;
}

void Population::BuildWheel() {
  MbrDyaNdxWheel.resize(kPlacesEach * MbrNdxPopSize);
  MbrNdxMaxWheelIndex = 0;
  for (std::size_t index = 0; index < MbrNdxPopSize; ++index) {
    const std::size_t room = MbrDyaNdxWheel.size() - MbrNdxMaxWheelIndex;
    const std::size_t places = PlacesOf(MbrDyaIdvIndividuals[index], room);
    std::fill_n(MbrDyaNdxWheel.data() + MbrNdxMaxWheelIndex, places,
                static_cast<std::uint32_t>(index + 1));
    MbrNdxMaxWheelIndex += places;
  }
  Assert(MbrNdxMaxWheelIndex > 0, "MbrNdxMaxWheelIndex > 0", kBrambleModule);
}

std::span<const std::uint32_t> Population::Wheel() const {
  return {MbrDyaNdxWheel.data(), MbrNdxMaxWheelIndex};
}

const Individual& Population::Spin() {
  return MbrDyaIdvIndividuals[MbrDyaNdxWheel[Random::Below(MbrNdxMaxWheelIndex)] - 1];
}

const Individual& Population::SelectRoulette() {
  if (MbrNdxMaxWheelIndex == 0) BuildWheel();
  return Spin();
}

const Individual& Population::SelectTournament() {
  if (MbrNdxMaxWheelIndex == 0) BuildWheel();
  const Individual& one = Spin();
  const Individual& two = Spin();
  return one.Fitness() > two.Fitness() ? one : two;
}

GeneticStatus Population::Breed(std::size_t count, SelectionMethod selection, Crossover& crossover,
                                Population& children) {
  if (selection != SelectionMethod::kRoulette && selection != SelectionMethod::kTournament) {
    return GeneticStatus::kUnknownSelection;
  }
  const auto select = [this, selection]() -> const Individual& {
    return selection == SelectionMethod::kRoulette ? SelectRoulette() : SelectTournament();
  };
  children.Restart(MbrNdxGeneration + 1, MbrPtrMchGenome);
  const std::uint32_t base = MbrNdxGeneration * static_cast<std::uint32_t>(MbrNdxPopSize);
  for (std::uint32_t child = 1; child <= count; ++child) {
    const Individual& one = select();
    const Individual& two = select();
    children.Extend().BecomeChild(base + child, one, two, crossover);
  }
  return GeneticStatus::SUCCESS;
}

GeneticStatus Population::Mutate(float probability) {
  for (Individual& individual : Individuals()) {
    const GeneticStatus status = individual.Genes().Mutate(probability);
    if (status != GeneticStatus::SUCCESS) return status;
  }
  return GeneticStatus::SUCCESS;
}

GeneticStatus Population::AddElites(Population* source, std::size_t count) {
  if (source == nullptr) return GeneticStatus::kNoElites;
  const std::size_t size = source->Size();
  Assert(count <= size, "NdxElites <= NdxPopSize");
  if (count == 1) {
    Add(source->At(source->Best().NdxPosition));
  } else {
    source->SortByFitness();
    AddRange(*source, size + 1 - count, size);
  }
  return GeneticStatus::SUCCESS;
}

}  // namespace kiln
