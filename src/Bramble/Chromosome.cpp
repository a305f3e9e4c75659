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
  chromosome.MbrDyaFlgFlags.assign(chromosome.Length(), Flags{false, true});
  return chromosome;
}

Chromosome Chromosome::Of(std::shared_ptr<const MetaChrom> genome,
                          std::span<const GeneValue> values) {
  Chromosome chromosome(std::move(genome));
  Assert(values.size() == chromosome.MbrPtrMchGenome->Length(), "NdxSeedLength == NdxChromLength",
         kBrambleModule);
  chromosome.MbrDyaGvlValues.assign(values.begin(), values.end());
  chromosome.MbrDyaFlgFlags.assign(values.size(), Flags{false, true});
  return chromosome;
}

Gene Chromosome::At(std::size_t position) const {
  Assert(position >= 1 && position <= Length(), "PtrGneCurrent != 0", kBrambleModule);
  const Flags flags = MbrDyaFlgFlags[position - 1];
  return {.BolChanged = flags.BolChanged,
          .BolMutable = flags.BolMutable,
          .MgnDefinition = MbrPtrMchGenome->At(position),
          .GvlValue = MbrDyaGvlValues[position - 1]};
}

void Chromosome::SetMutable(std::size_t position, bool is_mutable) {
  Assert(position >= 1 && position <= Length(), "PtrGneCurrent != 0", kBrambleModule);
  MbrDyaFlgFlags[position - 1].BolMutable = is_mutable;
}

void Chromosome::Restart(const std::shared_ptr<const MetaChrom>& genome) {
  Assert(genome != nullptr, "PtrMchGenome != 0", kBrambleModule);
  if (MbrPtrMchGenome != genome) MbrPtrMchGenome = genome;
  MbrDyaGvlValues.clear();
  MbrDyaFlgFlags.clear();
}

void Chromosome::Append(const Gene& gene) {
  Assert(MbrPtrMchGenome->At(Length() + 1) == gene.MgnDefinition, "MgnGene == MgnExpected",
         kBrambleModule);
  MbrDyaGvlValues.push_back(gene.GvlValue);
  MbrDyaFlgFlags.push_back({gene.BolChanged, gene.BolMutable});
}

void Chromosome::Append(const Chromosome& source, std::size_t first, std::size_t last) {
  Assert(first >= 1 && first <= last + 1 && last <= source.Length(), "PtrGneCurrent != 0",
         kBrambleModule);
  const std::size_t count = last + 1 - first;
  Assert(Fits(source, first, count), "MgnGene == MgnExpected", kBrambleModule);
  const GeneValue* values = source.MbrDyaGvlValues.data() + (first - 1);
  const Flags* flags = source.MbrDyaFlgFlags.data() + (first - 1);
  MbrDyaGvlValues.insert(MbrDyaGvlValues.end(), values, values + count);
  MbrDyaFlgFlags.insert(MbrDyaFlgFlags.end(), flags, flags + count);
}

// The common case, the same place in the same genome, is told without a look at the definitions.
bool Chromosome::Fits(const Chromosome& source, std::size_t first, std::size_t count) const {
  if (MbrPtrMchGenome == source.MbrPtrMchGenome && first == Length() + 1) return true;
  if (count > MbrPtrMchGenome->Length() - Length()) return false;
  return std::ranges::equal(MbrPtrMchGenome->Export().subspan(Length(), count),
                            source.MbrPtrMchGenome->Export().subspan(first - 1, count));
}

Chromosome Chromosome::Slice(std::size_t first, std::size_t last) const {
  Chromosome slice(std::make_shared<const MetaChrom>(MbrPtrMchGenome->Slice(first, last)));
  slice.Append(*this, first, last);
  return slice;
}

int Chromosome::Mutate(float probability) {
  if (!(probability > 0.0F)) return SUCCESS;
  const Chance mutation(probability);
  for (std::size_t index = 0;; ++index) {
    index += mutation.Misses(Length() - index);
    if (index == Length()) return SUCCESS;
    if (const int status = MutateAt(index); status != SUCCESS) return status;
  }
}

int Chromosome::MutateAt(std::size_t index) {
  Gene gene = At(index + 1);
  const int status = gene.Mutate();
  MbrDyaGvlValues[index] = gene.GvlValue;
  MbrDyaFlgFlags[index].BolChanged = gene.BolChanged;
  return status;
}

}  // namespace kiln
