#include "Bramble/Chromosome.h"

#include <algorithm>
#include <utility>

#include "Bramble/Chance.h"
#include "Bramble/Status.h"
#include "Shared/TAssertion.h"

namespace kiln {

Chromosome::Chromosome(std::shared_ptr<const MetaChrom> genome)
    : MbrPtrMchGenome(std::move(genome)) {
  Assert(MbrPtrMchGenome != nullptr, "PtrMchGenome != 0", kBrambleModule);
  MbrDyaGvlValues.reserve(MbrPtrMchGenome->Length());
  MbrDyaFlgFlags.reserve(MbrPtrMchGenome->Length());
}

Chromosome Chromosome::Random(std::shared_ptr<const MetaChrom> genome) {
  Chromosome chromosome(std::move(genome));
  for (const MetaGene& definition : chromosome.MbrPtrMchGenome->Export()) {
    chromosome.MbrDyaGvlValues.push_back(definition.Draw());
  }
  chromosome.MbrDyaFlgFlags.assign(chromosome.Length(), kMutable);
  return chromosome;
}

Chromosome Chromosome::Of(std::shared_ptr<const MetaChrom> genome,
                          std::span<const GeneValue> values) {
  Chromosome chromosome(std::move(genome));
  Assert(values.size() == chromosome.MbrPtrMchGenome->Length(), "NdxSeedLength == NdxChromLength");
  chromosome.MbrDyaGvlValues.assign(values.begin(), values.end());
  chromosome.MbrDyaFlgFlags.assign(values.size(), kMutable);
  return chromosome;
}

Gene Chromosome::At(std::size_t position) const {
  Assert(position >= 1 && position <= Length(), "PtrGneCurrent != 0");
  const std::uint8_t flags = MbrDyaFlgFlags[position - 1];
  return {.BolChanged = (flags & kChanged) != 0,
          .BolMutable = (flags & kMutable) != 0,
          .MgnDefinition = MbrPtrMchGenome->At(position),
          .GvlValue = MbrDyaGvlValues[position - 1]};
}

void Chromosome::SetMutable(std::size_t position, bool is_mutable) {
  Gene gene = At(position);
  gene.BolMutable = is_mutable;
  MbrDyaFlgFlags[position - 1] = FlagsOf(gene);
}

void Chromosome::Append(const Gene& gene) {
  Assert(MbrPtrMchGenome->At(Length() + 1) == gene.MgnDefinition, "MgnGene == MgnExpected");
  MbrDyaGvlValues.push_back(gene.GvlValue);
  MbrDyaFlgFlags.push_back(FlagsOf(gene));
}

std::uint8_t Chromosome::FlagsOf(const Gene& gene) {
  return static_cast<std::uint8_t>((gene.BolChanged ? kChanged : 0) |
                                   (gene.BolMutable ? kMutable : 0));
}

void Chromosome::Take(const Chromosome& source, std::size_t begin, std::size_t end) {
  std::copy_n(source.MbrDyaGvlValues.data() + begin - 1, end - begin,
              MbrDyaGvlValues.data() + begin - 1);
  std::copy_n(source.MbrDyaFlgFlags.data() + begin - 1, end - begin,
              MbrDyaFlgFlags.data() + begin - 1);
}

// Reads both genes and then chooses one: a branch on a coin would be mispredicted every other time.
void Chromosome::Take(const Chromosome& source, std::span<const std::uint8_t> where) {
  const std::span values(MbrDyaGvlValues);
  const std::span source_values(source.MbrDyaGvlValues);
  const std::span flags(MbrDyaFlgFlags);
  const std::span source_flags(source.MbrDyaFlgFlags);
  for (std::size_t i = 0; i < where.size(); ++i) {
    values[i] = GeneValue::Either(where[i] != 0, source_values[i], values[i]);
  }
  for (std::size_t i = 0; i < where.size(); ++i) {
    const std::uint8_t taken = source_flags[i];
    const std::uint8_t kept = flags[i];
    flags[i] = where[i] != 0 ? taken : kept;
  }
}

Chromosome Chromosome::Slice(std::size_t first, std::size_t last) const {
  Chromosome slice(std::make_shared<const MetaChrom>(MbrPtrMchGenome->Slice(first, last)));
  for (std::size_t position = first; position <= last; ++position) slice.Append(At(position));
  return slice;
}

GeneticStatus Chromosome::Mutate(float probability) {
  if (!(probability > 0.0F)) return GeneticStatus::SUCCESS;
  const Chance mutation(probability);
  for (std::size_t index = 0;; ++index) {
    index += mutation.Misses(Length() - index);
    if (index == Length()) return GeneticStatus::SUCCESS;
    const GeneticStatus status = MutateAt(index);
    if (status != GeneticStatus::SUCCESS) return status;
  }
}

GeneticStatus Chromosome::MutateAt(std::size_t index) {
  Gene gene = At(index + 1);
  const GeneticStatus status = gene.Mutate();
  MbrDyaGvlValues[index] = gene.GvlValue;
  MbrDyaFlgFlags[index] = FlagsOf(gene);
  return status;
}

}  // namespace kiln
