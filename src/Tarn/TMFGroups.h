#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace kiln {

// How the membership functions of several variables stand in one row: those of variable 0 first,
// then those of variable 1, and so on.
class TMFGroups {
 public:
  // No variables.
  TMFGroups() = default;

  // One count a variable. REQUIRES: no count is negative.
  explicit TMFGroups(std::span<const int> counts);

  std::size_t NumVariables() const { return firsts_.size() - 1; }
  std::size_t NumMF() const { return firsts_.back(); }

  // The functions of a variable are First(v)..First(v)+Count(v)-1. REQUIRES: v < NumVariables().
  std::size_t First(std::size_t v) const { return firsts_[v]; }
  std::size_t Count(std::size_t v) const { return firsts_[v + 1] - firsts_[v]; }

  // REQUIRES: mf < NumMF().
  std::size_t VariableOf(std::size_t mf) const;

  std::vector<int> Counts() const;

 private:
  std::vector<std::size_t> firsts_ = {0};  // of each variable, and the end of the last
};

}  // namespace kiln
