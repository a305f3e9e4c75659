#include "Membership/TBasicMFSet.h"

#include <cstddef>
#include <utility>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

std::size_t SlotsFor(int number_of_mf) {
  Assert(number_of_mf >= 0, "number_of_mf >= 0");
  return static_cast<std::size_t>(number_of_mf) + 1;
}

}  // namespace

TBasicMFSet::TBasicMFSet(std::optional<std::string> type, std::optional<std::string> name,
                         int number_of_mf, double lower_bound, double upper_bound)
    : name_(std::move(name)),
      type_(std::move(type)),
      members_(SlotsFor(number_of_mf)),
      lower_bound_(lower_bound),
      upper_bound_(upper_bound) {}

const TBasicMF* TBasicMFSet::GetMF(int index) const {
  return members_[CheckedIndex(index, "TBasicMFSet::GetMF")].get();
}

void TBasicMFSet::SetMF(int index, std::unique_ptr<TBasicMF> mf) {
  members_[CheckedIndex(index, "TBasicMFSet::SetMF")] = std::move(mf);
}

int TBasicMFSet::FindMF(std::string_view name) const {
  for (int i = 0; i < NumberOfMF(); ++i) {
    const TBasicMF* mf = GetMF(i);
    if (mf && mf->Name() && EqualNoCase(*mf->Name(), name)) return i;
  }
  return -1;
}

void TBasicMFSet::GetMemberships(double x, std::span<double> out) const {
  Assert(out.size() == members_.size() - 1, "out.size() == NumberOfMF");
  for (std::size_t i = 0; i < out.size(); ++i) {
    Assert(members_[i] != nullptr, "members[i] != NULL");
    out[i] = members_[i]->GetMembership(x);
  }
}

std::size_t TBasicMFSet::CheckedIndex(int index, const char* function) const {
  if (index < 0 || index > NumberOfMF()) {
    throw TException("Bad MF Number", "Invalid Parameter", function);
  }
  return static_cast<std::size_t>(index);
}

}  // namespace kiln
