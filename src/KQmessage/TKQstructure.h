#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// A keyword/value message: a name and pairs of a keyword and a value that is itself such a
// message. Written out it reads "(error :type invalid-message :expected alias)"; one without pairs
// is a leaf and stands for its name alone. Trainer parameters, the details of a TException and the
// description of a data file travel in this form.
//
// Keywords are unique and compared ignoring case. Pairs keep the order in which they were set,
// except after Remove.
class TKQstructure {
 public:
  explicit TKQstructure(std::string name = "unknown");

  // A deep copy, whose capacity is the count of the source.
  TKQstructure(const TKQstructure& other);
  TKQstructure& operator=(const TKQstructure& other);
  TKQstructure(TKQstructure&&) noexcept = default;
  TKQstructure& operator=(TKQstructure&&) noexcept = default;
  ~TKQstructure() = default;

  // The performative or, of a leaf, the text of the value.
  const std::string& Name() const { return name_; }

  // Number of pairs, and of slots: 16 at first, doubled whenever one more is needed.
  std::size_t Count() const { return pairs_.size(); }
  std::size_t Capacity() const { return capacity_; }

  // Replaces the value of `keyword`, which keeps the spelling of its first setting, or adds a pair.
  // REQUIRES: value is not null.
  void SetValue(std::string_view keyword, std::unique_ptr<TKQstructure> value);

  // SetValue with a leaf that holds the text, the integer, the number with six decimals or the word
  // "true" or "false".
  void SetString(std::string_view keyword, std::string text);
  void SetLong(std::string_view keyword, std::int64_t value);
  void SetDouble(std::string_view keyword, double value);
  void SetBool(std::string_view keyword, bool value);

  // (error :type `type`)
  static TKQstructure MakeError(std::string type);

  // The value of `keyword`. Without one, Deref returns null, DerefAssert throws TAssertion, for
  // callers that have checked the message, and DerefThrow throws TException.
  const TKQstructure* Deref(std::string_view keyword) const;
  const TKQstructure& DerefAssert(std::string_view keyword) const;
  const TKQstructure& DerefThrow(std::string_view keyword) const;

  // The truth value "true" or "false", in any case, of `keyword`; anything else is a TException.
  bool DerefBoolThrow(std::string_view keyword) const;

  // Throws TException unless `keyword` is there and, where `expected_value` is not empty, its value
  // has that name.
  void CheckMessage(std::string_view keyword, std::string_view expected_value) const;

  // Takes the pair out; the last pair moves into its place. No effect without such a pair.
  void Remove(std::string_view keyword);

  // Writes the message in its bracketed form.
  void Print(std::ostream& out) const;

  // Reads one message in its bracketed form. Throws TAssertion for any other text, since only
  // programs write messages.
  static TKQstructure Parse(std::string_view text);

 private:
  struct TPair {
    std::string keyword;
    std::unique_ptr<TKQstructure> value;
  };

  static constexpr std::size_t kFirstCapacity = 16;

  std::optional<std::size_t> Find(std::string_view keyword) const;

  std::string name_;
  std::size_t capacity_ = kFirstCapacity;
  std::vector<TPair> pairs_;
};

// The number at the start of `text`; leading blanks and anything behind the number are passed
// over. Integers beyond 32 bits become the nearest that has a place. Without a number the first two
// throw TException, the others, for texts that were checked before, TAssertion.
std::int32_t str2longThrow(std::string_view text);
double str2doubleThrow(std::string_view text);
std::int32_t str2long(std::string_view text);
double str2double(std::string_view text);

}  // namespace kiln
