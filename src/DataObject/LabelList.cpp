#include "DataObject/LabelList.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace kiln {

void LabelList::Append(std::string_view name, double value) {
  const auto entry = std::find_if(MbrDyaEntries.begin(), MbrDyaEntries.end(),
                                  [&](const LabelEntry& known) { return known.Name == name; });
  if (entry != MbrDyaEntries.end())
    entry->Value += value;
  else
    MbrDyaEntries.push_back({value, std::string(name)});
}

void LabelList::Append(std::span<const WeightedName> labels) {
  constexpr std::size_t kFew = 16;  // are compared with each other as fast as looked up
  if (MbrDyaEntries.size() + labels.size() <= kFew) {
    for (const WeightedName& label : labels) Append(label.Name, label.Value);
    return;
  }
  std::unordered_map<std::string_view, std::size_t> places;
  for (std::size_t i = 0; i < MbrDyaEntries.size(); ++i) places[MbrDyaEntries[i].Name] = i;
  std::vector<LabelEntry> entries = MbrDyaEntries;
  for (const WeightedName& label : labels) {
    const auto [place, is_new] = places.try_emplace(label.Name, entries.size());
    if (is_new) {
      entries.push_back({label.Value, std::string(label.Name)});
    } else {
      entries[place->second].Value += label.Value;
    }
  }
  MbrDyaEntries = std::move(entries);
}

}  // namespace kiln
