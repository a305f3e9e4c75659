#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Bramble/Crossover.h"
#include "Bramble/Individual.h"
#include "Bramble/MetaChrom.h"
#include "Bramble/Status.h"

namespace kiln {

struct FitnessStatistics {
  float FltMaximum = 0.0F;
  float FltMinimum = 0.0F;
  double DblAverage = 0.0;
  double DblTotal = 0.0;
};

struct BestIndividual {
  std::size_t NdxPosition;
  float FltFitness;
};

// The individuals of one generation, all of one genome. Positions count from 1. Copying a
// population clones it.
//
// Individuals rank by fitness; of equals the one that stands later ranks higher. Elites stand
// behind the children, so that no child of equal fitness outranks them: in the double precision of
// an evaluator that child may be a little worse.
//
// An emptied population keeps its individuals as spare room, so that two populations that take
// turns as parents and children need no memory after the first turn.
//
// Parents come from the roulette wheel: an array in which every individual of fitness f > 0 stands
// trunc(f / total * 10 * Size()) times. It is built when it is first needed and forgotten whenever
// individuals or their fitness change; so whoever changes the fitness of a single individual must
// call ComputeStatistics() before the next selection.
class Population {
 public:
  // With `size` random individuals, whose identifiers count from 1. Throws TAssertion without a
  // genome.
  Population(std::uint32_t generation, std::size_t size, std::shared_ptr<const MetaChrom> genome);

  std::size_t Size() const { return MbrNdxPopSize; }
  std::uint32_t Generation() const { return MbrNdxGeneration; }
  const std::shared_ptr<const MetaChrom>& Genome() const { return MbrPtrMchGenome; }

  // --- Individuals ---------------------------------------------------------------------------

  // All of them in order. Valid until the population grows.
  std::span<Individual> Individuals() { return {MbrDyaIdvIndividuals.data(), MbrNdxPopSize}; }
  std::span<const Individual> Individuals() const {
    return {MbrDyaIdvIndividuals.data(), MbrNdxPopSize};
  }

  // Throws TAssertion when nobody stands at the position.
  Individual& At(std::size_t position) { return MbrDyaIdvIndividuals[IndexOf(position)]; }
  const Individual& At(std::size_t position) const {
    return MbrDyaIdvIndividuals[IndexOf(position)];
  }

  // Empties the population for another generation; the storage stays.
  void Restart(std::uint32_t generation, std::shared_ptr<const MetaChrom> genome);

  // Adds clones: of one individual, of a whole population, of its positions first..last. Throw
  // TAssertion for positions without individuals and for individuals of another genome.
  // REQUIRES: the source is not this population.
  void Add(const Individual& individual);
  void AddAll(const Population& source) { AddRange(source, 1, source.Size()); }
  void AddRange(const Population& source, std::size_t first, std::size_t last);

  // The positions first..last as a population of the same generation, its statistics computed.
  Population SubPopulation(std::size_t first, std::size_t last) const;

  // Puts the individuals in the order of their rank, the highest last.
  void SortByFitness();

  // Fills `genes` with the values of every individual, as stored: what is written there is
  // inherited. Valid until the population changes its individuals.
  void Export(std::vector<std::span<GeneValue>>& genes);

  // --- Fitness -------------------------------------------------------------------------------

  // Sets the fitness of every individual, in order, and computes the statistics.
  // Throws TAssertion unless there is one for each.
  void SetFitness(std::span<const float> fitness);

  // Takes the statistics anew. Throws TAssertion in an empty population.
  void ComputeStatistics();

  // As last computed, or scaled since.
  const FitnessStatistics& Statistics() const { return MbrStsFitness; }

  // The individual of the highest rank. Throws TAssertion in an empty population.
  BestIndividual Best() const;

  // Scales every fitness by the recorded statistics. ScalingMethod::kLinear: (f - min) / (max -
  // min), or 0.5 for all when there is no difference. Any other method is kUnknownScaling.
  GeneticStatus ScaleFitness(ScalingMethod method);

  // --- The next generation -------------------------------------------------------------------

  // Fills the wheel anew. Throws TAssertion when nobody gets a place.
  void BuildWheel();

  // The positions on the wheel, empty while it isn't built.
  std::span<const std::uint32_t> Wheel() const;

  // The individual at a random place of the wheel; the fitter of those at two random places, the
  // second when both are equally fit. Both build the wheel when it isn't built.
  const Individual& SelectRoulette();
  const Individual& SelectTournament();

  // Makes `children` anew: a generation later, `count` children of parents chosen from this
  // population, with identifiers generation * Size() + i (modulo 2^32). Returns SUCCESS or
  // kUnknownSelection. Throws TAssertion as BuildWheel does, unless count is 0.
  // REQUIRES: `children` is not this population.
  GeneticStatus Breed(std::size_t count, SelectionMethod selection, Crossover& crossover,
                      Population& children);

  // Mutates the individuals in order, up to the first that refuses; its status, else SUCCESS.
  GeneticStatus Mutate(float probability);

  // Adds clones of the `count` fittest of a population: a single one as Best() finds it; more by
  // sorting `source`, in ascending order. Returns kNoElites when there is no source, else SUCCESS.
  // Throws TAssertion when it has fewer individuals.
  GeneticStatus AddElites(Population* source, std::size_t count);

 private:
  static constexpr std::size_t kPlacesEach = 10;  // of the wheel, for an average individual

  std::size_t IndexOf(std::size_t position) const;
  Individual& Extend();
  const Individual& Spin();
  std::size_t PlacesOf(const Individual& individual, std::size_t room) const;

  std::size_t MbrNdxPopSize = 0;
  std::uint32_t MbrNdxGeneration;
  std::vector<std::uint32_t> MbrDyaNdxWheel;  // positions; storage is kept while it isn't built
  std::size_t MbrNdxMaxWheelIndex = 0;        // places taken; 0 while it isn't built
  FitnessStatistics MbrStsFitness;
  std::shared_ptr<const MetaChrom> MbrPtrMchGenome;
  std::vector<Individual> MbrDyaIdvIndividuals;  // the first MbrNdxPopSize live, the rest spare
  std::vector<std::uint32_t> MbrDyaNdxRanking;   // of SortByFitness; kept for its storage
};

}  // namespace kiln
