#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// One weighted name of a row.
struct LabelEntry {
  double Value;
  std::string Name;

  bool operator==(const LabelEntry&) const = default;
};

// The labels of one row in the order in which they came, each name once. Names are compared with
// regard to case.
class LabelList {
 public:
  // Adds `value` to the entry called `name`, or appends one.
  void Append(std::string_view name, double value);

  void Clear() { MbrDyaEntries.clear(); }
  bool Empty() const { return MbrDyaEntries.empty(); }
  const std::vector<LabelEntry>& Entries() const { return MbrDyaEntries; }

  bool operator==(const LabelList&) const = default;

 private:
  std::vector<LabelEntry> MbrDyaEntries;
};

}  // namespace kiln
