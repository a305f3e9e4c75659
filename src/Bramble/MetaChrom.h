#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "Bramble/MetaGene.h"

namespace kiln {

// A genome: the definition of every gene of a chromosome, in order. Positions count from 1.
class MetaChrom {
 public:
  void Append(const MetaGene& gene) { MbrDyaMgnGenes.push_back(gene); }

  std::size_t Length() const { return MbrDyaMgnGenes.size(); }

  // Throws TAssertion when no gene stands at the position.
  const MetaGene& At(std::size_t position) const;

  // The whole genome as a plain array of (type, upper bound, lower bound). Valid until it changes.
  std::span<const MetaGene> Export() const { return MbrDyaMgnGenes; }

  // The definitions from `first` to `last`, both included. Throws TAssertion when they don't exist.
  MetaChrom Slice(std::size_t first, std::size_t last) const;

  bool operator==(const MetaChrom&) const = default;

 private:
  std::vector<MetaGene> MbrDyaMgnGenes;
};

}  // namespace kiln
