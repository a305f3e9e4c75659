#include "Bramble/MetaChrom.h"

#include "Shared/TAssertion.h"

namespace kiln {

const MetaGene& MetaChrom::At(std::size_t position) const {
  Assert(position >= 1 && position <= Length(), "PtrMgnCurrent != 0");
  return MbrDyaMgnGenes[position - 1];
}

MetaChrom MetaChrom::Slice(std::size_t first, std::size_t last) const {
  Assert(first >= 1 && first <= last && last <= Length(), "PtrMgnCurrent != 0");
  MetaChrom slice;
  for (const MetaGene& gene : Export().subspan(first - 1, last - first + 1)) slice.Append(gene);
  return slice;
}

}  // namespace kiln
