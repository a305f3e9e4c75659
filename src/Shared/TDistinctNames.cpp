#include "Shared/TDistinctNames.h"

#include "Shared/Text.h"

namespace kiln {

std::string TDistinctNames::Take(const std::string& name) {
  const auto [entry, is_new] = given_.try_emplace(FoldCase(name), 1);
  if (is_new) return name;
  for (;;) {
    std::string numbered = name + '_' + std::to_string(++entry->second);
    if (given_.try_emplace(FoldCase(numbered), 1).second) return numbered;
  }
}

}  // namespace kiln
