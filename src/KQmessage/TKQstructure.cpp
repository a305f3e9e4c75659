#include "KQmessage/TKQstructure.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <utility>

#include "Shared/Narrowing.h"
#include "Shared/NumberFormat.h"
#include "Shared/NumberScan.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

// The name by which the assertions about messages are known, whichever source they stand in.
constexpr char kModule[] = "KQmessage/KQML";

std::string Join(std::string_view left, std::string_view right) {
  std::string text(left);
  return text.append(right);
}

// Throws TException whose detail is (error :type `type` :`key` `text`).
[[noreturn]] void ThrowError(std::string message, const char* function, const char* type,
                             std::string_view key, std::string_view text) {
  auto error = std::make_shared<TKQstructure>(TKQstructure::MakeError(type));
  error->SetString(key, std::string(text));
  throw TException(std::move(message), "", function, std::move(error));
}

}  // namespace

TKQstructure::TKQstructure(std::string name) : name_(std::move(name)) {}

TKQstructure::TKQstructure(const TKQstructure& other)
    : name_(other.name_), capacity_(other.Count()) {
  pairs_.reserve(capacity_);
  for (const TPair& pair : other.pairs_) {
    pairs_.push_back({pair.keyword, std::make_unique<TKQstructure>(*pair.value)});
  }
}

TKQstructure& TKQstructure::operator=(const TKQstructure& other) {
  if (this != &other) *this = TKQstructure(other);
  return *this;
}

void TKQstructure::SetValue(std::string_view keyword, std::unique_ptr<TKQstructure> value) {
  Assert(value != nullptr, "newval != NULL", kModule);
  if (const auto place = Find(keyword)) {
    pairs_[*place].value = std::move(value);
    return;
  }
  if (Count() == capacity_) {
    capacity_ = std::max(2 * capacity_, kFirstCapacity);
    pairs_.reserve(capacity_);
  }
  pairs_.push_back({std::string(keyword), std::move(value)});
}

void TKQstructure::SetString(std::string_view keyword, std::string text) {
  SetValue(keyword, std::make_unique<TKQstructure>(std::move(text)));
}

void TKQstructure::SetLong(std::string_view keyword, std::int64_t value) {
  SetString(keyword, std::to_string(value));
}

void TKQstructure::SetDouble(std::string_view keyword, double value) {
  SetString(keyword, FormatFixed(value, 6));
}

void TKQstructure::SetBool(std::string_view keyword, bool value) {
  SetString(keyword, value ? "true" : "false");
}

TKQstructure TKQstructure::MakeError(std::string type) {
  TKQstructure error("error");
  error.SetString("type", std::move(type));
  return error;
}

// From the last pair to the first: what was set last is asked for most.
std::optional<std::size_t> TKQstructure::Find(std::string_view keyword) const {
  for (std::size_t i = Count(); i-- > 0;) {
    if (EqualNoCase(pairs_[i].keyword, keyword)) return i;
  }
  return std::nullopt;
}

const TKQstructure* TKQstructure::Deref(std::string_view keyword) const {
  const auto place = Find(keyword);
  return place ? pairs_[*place].value.get() : nullptr;
}

const TKQstructure& TKQstructure::DerefAssert(std::string_view keyword) const {
  const TKQstructure* value = Deref(keyword);
  Assert(value != nullptr, "value != NULL", kModule);
  return *value;
}

const TKQstructure& TKQstructure::DerefThrow(std::string_view keyword) const {
  const TKQstructure* value = Deref(keyword);
  if (value == nullptr) {
    ThrowError(Join("cannot find keyword ", keyword), "TKQstructure::DerefThrow", "invalid-message",
               "expected", keyword);
  }
  return *value;
}

bool TKQstructure::DerefBoolThrow(std::string_view keyword) const {
  const std::string& text = DerefThrow(keyword).Name();
  if (EqualNoCase(text, "true")) return true;
  if (EqualNoCase(text, "false")) return false;
  ThrowError("boolean field expected", "TKQstructure::DerefBoolThrow", "type-error", "expected",
             "boolean");
}

void TKQstructure::CheckMessage(std::string_view keyword, std::string_view expected_value) const {
  constexpr char kFunction[] = "TKQstructure::CheckMessage";
  const TKQstructure* value = Deref(keyword);
  if (value == nullptr) {
    ThrowError(Join("invalid message: expected ", keyword), kFunction, "invalid-message",
               "expected", keyword);
  }
  if (expected_value.empty() || EqualNoCase(value->Name(), expected_value)) return;
  auto error = std::make_shared<TKQstructure>(MakeError("invalid-message"));
  error->SetString("tag", std::string(keyword));
  error->SetString("expected-value", std::string(expected_value));
  throw TException(Join("invalid message: expected value ", expected_value), "", kFunction,
                   std::move(error));
}

void TKQstructure::Remove(std::string_view keyword) {
  const auto place = Find(keyword);
  if (!place) return;
  if (*place + 1 != Count()) pairs_[*place] = std::move(pairs_.back());
  pairs_.pop_back();
}

void TKQstructure::Print(std::ostream& out) const {
  if (pairs_.empty()) {
    out << name_;
    return;
  }
  out << '(' << name_;
  for (const TPair& pair : pairs_) {
    out << " :" << pair.keyword << ' ';
    pair.value->Print(out);
  }
  out << ')';
}

std::int32_t str2longThrow(std::string_view text) {
  if (const auto value = ScanInteger(text)) return ToInt32(*value);
  ThrowError(Join(text, " is not a long"), "str2longThrow", "invalid-message", "integer-expected",
             text);
}

double str2doubleThrow(std::string_view text) {
  if (const auto value = ScanNumber(text)) return *value;
  ThrowError(Join(text, " is not a double"), "str2doubleThrow", "invalid-message",
             "number-expected", text);
}

std::int32_t str2long(std::string_view text) {
  const auto value = ScanInteger(text);
  Assert(value.has_value(), "err == 1", kModule);
  return ToInt32(*value);
}

double str2double(std::string_view text) {
  const auto value = ScanNumber(text);
  Assert(value.has_value(), "err == 1", kModule);
  return *value;
}

}  // namespace kiln
