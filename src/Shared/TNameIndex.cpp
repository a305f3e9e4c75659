#include "Shared/TNameIndex.h"

namespace kiln {

void TNameIndex::Add(std::string_view name) {
  const auto [entry, is_new] = places_.emplace(name, TPlace{size_++, true});
  if (!is_new) entry->second.is_only = false;
}

bool TNameIndex::HasSeveral(std::string_view name) const {
  const auto entry = places_.find(name);
  return entry != places_.end() && !entry->second.is_only;
}

std::optional<std::size_t> TNameIndex::Find(std::string_view name) const {
  const auto entry = places_.find(name);
  if (entry == places_.end()) return std::nullopt;
  return entry->second.first;
}

}  // namespace kiln
