#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace kiln {

struct TForm;
struct TTag;

// How reading an argument ended.
enum class TReadCode {
  kRead = 0,
  kTagAbsent = -201,  // the tag, or what should stand behind it, is not there
  kNotABoolean = -202,
  kNoParentheses = -203,
};

// What an argument reader found: `value` counts when `code` is kRead.
template <typename T>
struct TReading {
  TReadCode code;
  T value;
};

// A command and its arguments, "create Data alias d inputs 2 ...": a word that names the command,
// then tags with their values in any order, separated by blanks. Only the space character is a
// blank.
//
// A tag is found by its first occurrence as a word of the line, with regard to case, even where
// that occurrence is the value of another tag. Words that are tags are therefore refused as
// aliases.
//
// Readers convert without complaint: a word that is not a number reads as 0. The views that readers
// return live as long as the text of the line.
class TCommandLine {
 public:
  explicit TCommandLine(std::string_view text) : text_(text) {}

  // A line that means this form of a command, which must outlive it. To look for a tag that the
  // form does not list is TAssertion.
  TCommandLine(std::string_view text, const TForm& form) : text_(text), form_(&form) {}

  std::string_view Text() const { return text_; }

  // The tags of the form; none where the line means no form.
  std::span<const TTag> Tags() const;

  // The first word, empty in an empty line.
  std::string_view CommandWord() const;

  // What stands behind it.
  std::string_view Arguments() const;

  // Whether the line holds the tag anywhere, also as a part of a word.
  bool Contains(std::string_view tag) const;

  // The word behind the tag, cut to 80 characters.
  TReading<std::string_view> Word(std::string_view tag) const;

  // The same for a tag that may be an alias as well: an occurrence that is the value of a tag which
  // takes an alias does not count.
  TReading<std::string_view> WordOfTag(std::string_view tag) const;
  TReading<bool> BooleanOfTag(std::string_view tag) const;

  // "true" or "on", "false" or "off", in any case.
  TReading<bool> Boolean(std::string_view tag) const;

  TReading<std::int64_t> Long(std::string_view tag) const;
  TReading<double> Double(std::string_view tag) const;

  // The text between the first "(" behind the tag and the next ")".
  TReading<std::string_view> Parenthesised(std::string_view tag) const;

  // The elements of the first list "{...}" behind the tag: the texts between its commas, each cut
  // to 254 characters. A list of nothing but blanks has none.
  TReading<std::vector<std::string_view>> Words(std::string_view tag) const;
  TReading<std::vector<std::int64_t>> Longs(std::string_view tag) const;
  TReading<std::vector<double>> Doubles(std::string_view tag) const;

  // The whole number behind the first occurrence of the tag that has one. Other occurrences, such
  // as an alias that is spelled like the tag, do not count.
  std::optional<std::int64_t> WholeNumber(std::string_view tag) const;

  // The number behind the first occurrence of the tag, in any case of letters, that has one.
  std::optional<double> NumberNoCase(std::string_view tag) const;

  // The elements, without the blanks around them, of the list directly behind the first occurrence
  // of the tag that has one there.
  std::optional<std::vector<std::string_view>> WordsAt(std::string_view tag) const;

 private:
  // The rest of the line behind the tag.
  std::optional<std::string_view> Behind(std::string_view tag) const;

  // The text in the first braces behind the tag.
  std::optional<std::string_view> List(std::string_view tag) const;

  void CheckListed(std::string_view tag) const;
  std::string_view AsWritten(std::string_view tag) const;

  std::string_view text_;
  const TForm* form_ = nullptr;
};

}  // namespace kiln
