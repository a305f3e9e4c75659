#pragma once

#include <span>
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

// A label that somebody else holds the name of.
struct WeightedName {
  std::string_view Name;
  double Value;
};

// The labels of one row in the order in which they came, each name once. Names are compared with
// regard to case.
class LabelList {
 public:
  // Adds `value` to the entry called `name`, or appends one.
  void Append(std::string_view name, double value);

  // The same with each of many, in time that grows with their number alone.
  void Append(std::span<const WeightedName> labels);

  void Clear() { MbrDyaEntries.clear(); }
  bool Empty() const { return MbrDyaEntries.empty(); }
  const std::vector<LabelEntry>& Entries() const { return MbrDyaEntries; }

  bool operator==(const LabelList&) const = default;

 private:
  std::vector<LabelEntry> MbrDyaEntries;
};

}  // namespace kiln
