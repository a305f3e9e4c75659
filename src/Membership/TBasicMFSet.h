#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Membership/TBasicMF.h"

namespace kiln {

// The membership functions that divide the range of one variable into terms, in numbered slots
// which are filled after construction and may stay empty.
//
// Behind the last member there is one slot more. Its index is accepted wherever a slot is named,
// but what stands there is no member: it is neither counted, nor evaluated, found or saved.
class TBasicMFSet {
 public:
  // `name` is that of the variable, `type` a free description; `lower_bound` and `upper_bound` are
  // the ends of its range. REQUIRES: number_of_mf >= 0.
  TBasicMFSet(std::optional<std::string> type, std::optional<std::string> name, int number_of_mf,
              double lower_bound, double upper_bound);

  const std::optional<std::string>& Name() const { return name_; }
  const std::optional<std::string>& Type() const { return type_; }
  int NumberOfMF() const { return static_cast<int>(members_.size()) - 1; }
  double LowerBound() const { return lower_bound_; }
  double UpperBound() const { return upper_bound_; }

  // The function in a slot, null in an empty one. Both throw TException "Bad MF Number" ("Invalid
  // Parameter") for an index below 0 or above NumberOfMF().
  const TBasicMF* GetMF(int index) const;
  void SetMF(int index, std::unique_ptr<TBasicMF> mf);

  // Index of the first member of that name, ignoring case; -1 when there is none.
  int FindMF(std::string_view name) const;

  // The degrees of membership of `x` in all members, in order.
  // REQUIRES: every member's slot is filled, out.size() == NumberOfMF().
  void GetMemberships(double x, std::span<double> out) const;

 private:
  std::size_t CheckedIndex(int index, const char* function) const;

  std::optional<std::string> name_;
  std::optional<std::string> type_;
  std::vector<std::unique_ptr<TBasicMF>> members_;  // the spare slot last
  double lower_bound_;
  double upper_bound_;
};

}  // namespace kiln
