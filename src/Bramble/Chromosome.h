#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Bramble/Gene.h"
#include "Bramble/GeneValue.h"
#include "Bramble/MetaChrom.h"
#include "Bramble/Status.h"

namespace kiln {

// A list of genes laid out by a genome. Positions count from 1.
//
// Values stand in one array and flags in another; types and bounds stand once in the genome, which
// all chromosomes of a population share. While a chromosome is being put together it may be shorter
// than its genome, never longer.
class Chromosome {
 public:
  // An empty chromosome. Throws TAssertion when `genome` is null.
  explicit Chromosome(std::shared_ptr<const MetaChrom> genome);

  // With a random value for every gene of the genome, drawn in order.
  static Chromosome Random(std::shared_ptr<const MetaChrom> genome);

  // With these values, which may lie outside the bounds. Throws TAssertion unless there is one for
  // every gene of the genome.
  static Chromosome Of(std::shared_ptr<const MetaChrom> genome, std::span<const GeneValue> values);

  std::size_t Length() const { return MbrDyaGvlValues.size(); }
  const std::shared_ptr<const MetaChrom>& Genome() const { return MbrPtrMchGenome; }

  // The stored values. Writing to them is no mutation: it leaves the changed flags alone.
  std::span<GeneValue> Values() { return MbrDyaGvlValues; }
  std::span<const GeneValue> Values() const { return MbrDyaGvlValues; }

  // --- Single genes --------------------------------------------------------------------------
  // Throw TAssertion when no gene stands at the position.

  Gene At(std::size_t position) const;
  void SetMutable(std::size_t position, bool is_mutable);

  // --- Putting together ----------------------------------------------------------------------

  // Appends a clone of the gene. Throws TAssertion unless its type and bounds are those of the
  // genome at the next position.
  void Append(const Gene& gene);

  // Replaces genes by clones of those at the same positions of `source`: those from position
  // `begin` to before `end`, or those for which `where`, a byte for each gene, is not 0.
  // REQUIRES: both chromosomes have genes there, of the same definitions.
  void Take(const Chromosome& source, std::size_t begin, std::size_t end);
  void Take(const Chromosome& source, std::span<const std::uint8_t> where);

  // The genes first..last as a chromosome of their own.
  Chromosome Slice(std::size_t first, std::size_t last) const;

  // Draws once for each gene in order and mutates it when the event of this probability happens.
  // Stops at the first gene that refuses and returns its status, else SUCCESS. Nothing is drawn
  // with a probability that is not above 0.
  GeneticStatus Mutate(float probability);

 private:
  static constexpr std::uint8_t kChanged = 1;
  static constexpr std::uint8_t kMutable = 2;

  static std::uint8_t FlagsOf(const Gene& gene);
  GeneticStatus MutateAt(std::size_t index);

  std::shared_ptr<const MetaChrom> MbrPtrMchGenome;
  std::vector<GeneValue> MbrDyaGvlValues;
  std::vector<std::uint8_t> MbrDyaFlgFlags;
};

}  // namespace kiln
