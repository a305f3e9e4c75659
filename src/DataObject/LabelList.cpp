#include "DataObject/LabelList.h"

#include <algorithm>

namespace kiln {

void LabelList::Append(std::string_view name, double value) {
  const auto entry = std::find_if(MbrDyaEntries.begin(), MbrDyaEntries.end(),
                                  [&](const LabelEntry& known) { return known.Name == name; });
  if (entry != MbrDyaEntries.end())
    entry->Value += value;
  else
    MbrDyaEntries.push_back({value, std::string(name)});
}

}  // namespace kiln
