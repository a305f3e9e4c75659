#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Membership/TBasicMFSet.h"

namespace kiln {

// The membership functions of all inputs or of all outputs of a model: a set for each variable, in
// slots that are filled after construction.
class TMFSetList {
 public:
  // REQUIRES: count >= 0.
  TMFSetList(int count, std::optional<std::string> list_name);

  int Count() const { return static_cast<int>(sets_.size()); }
  const std::optional<std::string>& ListName() const { return list_name_; }

  // The set in a slot, null in an empty one. Both throw TException "Invalid MF set number" ("Bad
  // Parameter") for an index outside 0..Count()-1.
  const TBasicMFSet* GetMFSet(int index) const;
  void SetMFSet(int index, std::unique_ptr<TBasicMFSet> set);

  // The number of members of each set; 0 for an empty slot.
  std::vector<int> MFCounts() const;

  // Index of the first set of that name, ignoring case; -1 when there is none.
  int FindMFSet(std::string_view name) const;

 private:
  std::size_t CheckedIndex(int index, const char* function) const;

  std::vector<std::unique_ptr<TBasicMFSet>> sets_;
  std::optional<std::string> list_name_;
};

}  // namespace kiln
