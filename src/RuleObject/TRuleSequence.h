#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "Shared/TAssertion.h"

namespace kiln {

// The ordered, growable lists that rules are made of: operands, consequences, rules. A position
// outside a list is a fault of the caller: TAssertion.
template <typename T>
class TRuleSequence {
 public:
  static constexpr int kAtEnd = -1;

  int Count() const { return static_cast<int>(elements_.size()); }

  auto begin() const { return elements_.begin(); }
  auto end() const { return elements_.end(); }

  const T& Get(int position) const {
    CheckElement(position);
    return elements_[static_cast<std::size_t>(position)];
  }

  void Replace(int position, T element) {
    CheckElement(position);
    elements_[static_cast<std::size_t>(position)] = std::move(element);
  }

  // Puts an element in front of the one at `position`, 0..Count(), or at the end.
  void Insert(int position, T element) {
    if (position == kAtEnd) position = Count();
    Assert(position >= 0, "exprnum>=0", kModule);
    Assert(position <= Count(), at_most_count_, kModule);
    elements_.insert(elements_.begin() + position, std::move(element));
  }

  void Append(T element) { Insert(kAtEnd, std::move(element)); }

  void Remove(int position) {
    CheckElement(position);
    elements_.erase(elements_.begin() + position);
  }

 protected:
  // Takes the texts of the checks, which differ in what they call the number of elements.
  TRuleSequence(const char* below_count, const char* at_most_count)
      : below_count_(below_count), at_most_count_(at_most_count) {}

 private:
  // The name by which users know the assertions about every kind of these lists.
  static constexpr char kModule[] = "RuleObject/RuleObject";

  void CheckElement(int position) const {
    Assert(position >= 0, "exprnum>=0", kModule);
    Assert(position < Count(), below_count_, kModule);
  }

  const char* below_count_;
  const char* at_most_count_;
  std::vector<T> elements_;
};

}  // namespace kiln
