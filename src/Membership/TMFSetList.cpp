#include "Membership/TMFSetList.h"

#include <utility>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

std::size_t SlotsFor(int count) {
  Assert(count >= 0, "count >= 0");
  return static_cast<std::size_t>(count);
}

}  // namespace

TMFSetList::TMFSetList(int count, std::optional<std::string> list_name)
    : sets_(SlotsFor(count)), list_name_(std::move(list_name)) {}

const TBasicMFSet* TMFSetList::GetMFSet(int index) const {
  return sets_[CheckedIndex(index, "TMFSetList::GetMFSet")].get();
}

void TMFSetList::SetMFSet(int index, std::unique_ptr<TBasicMFSet> set) {
  sets_[CheckedIndex(index, "TMFSetList::SetMFSet")] = std::move(set);
}

std::vector<int> TMFSetList::MFCounts() const {
  std::vector<int> counts;
  for (const auto& set : sets_) counts.push_back(set ? set->NumberOfMF() : 0);
  return counts;
}

int TMFSetList::FindMFSet(std::string_view name) const {
  for (int i = 0; i < Count(); ++i) {
    const TBasicMFSet* set = GetMFSet(i);
    if (set && set->Name() && EqualNoCase(*set->Name(), name)) return i;
  }
  return -1;
}

std::size_t TMFSetList::CheckedIndex(int index, const char* function) const {
  if (index < 0 || index >= Count()) {
    throw TException("Invalid MF set number", "Bad Parameter", function);
  }
  return static_cast<std::size_t>(index);
}

}  // namespace kiln
