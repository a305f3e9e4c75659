#include "Interpreter/TCommandLine.h"

#include <algorithm>

#include "Interpreter/TCommand.h"
#include "Shared/NumberScan.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr std::size_t kLongestWord = 80;
constexpr std::size_t kLongestElement = 254;

// The first word of `text`, whatever its length.
std::string_view FirstWord(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text.substr(0, text.find(' '));
}

// The text between the first `open` and the next `close`.
std::optional<std::string_view> Between(std::string_view text, char open, char close) {
  const std::size_t begin = text.find(open);
  const std::size_t end = begin == text.npos ? begin : text.find(close, begin);
  if (end == text.npos) return std::nullopt;
  return text.substr(begin + 1, end - begin - 1);
}

TReading<bool> ToBoolean(std::string_view text) {
  text = TrimBlanks(text);
  if (EqualNoCase(text, "true") || EqualNoCase(text, "on")) return {TReadCode::kRead, true};
  if (EqualNoCase(text, "false") || EqualNoCase(text, "off")) return {TReadCode::kRead, false};
  return {TReadCode::kNotABoolean, false};
}

std::int64_t ToLong(std::string_view text) {
  return ScanInteger(text).value_or(0);
}

double ToDouble(std::string_view text) {
  return ScanNumber(text).value_or(0.0);
}

// Calls `take` with each element of a list.
template <typename TTake>
void ForEachElement(std::string_view list, TTake take) {
  if (TrimBlanks(list).empty()) return;
  for (;;) {
    const std::size_t comma = list.find(',');
    take(list.substr(0, std::min(comma, kLongestElement)));
    if (comma == list.npos) return;
    list.remove_prefix(comma + 1);
  }
}

template <typename TConvert>
auto ConvertElements(const std::optional<std::string_view>& list, TConvert convert) {
  TReading<std::vector<decltype(convert(*list))>> reading{TReadCode::kTagAbsent, {}};
  if (!list) return reading;
  reading.code = TReadCode::kRead;
  ForEachElement(*list,
                 [&](std::string_view element) { reading.value.push_back(convert(element)); });
  return reading;
}

}  // namespace

std::span<const TTag> TCommandLine::Tags() const {
  return form_ ? form_->tags : std::span<const TTag>();
}

std::string_view TCommandLine::CommandWord() const {
  return FirstWord(text_);
}

std::string_view TCommandLine::Arguments() const {
  const std::string_view word = CommandWord();
  return text_.substr(static_cast<std::size_t>(word.data() + word.size() - text_.data()));
}

// Help, completion and hints show the tags of the form only: a handler that reads another one would
// have a tag that nobody can learn of.
void TCommandLine::CheckListed(std::string_view tag) const {
  Assert(!form_ || FindTag(form_->tags, tag), "the row of the command lists the tag");
}

bool TCommandLine::Contains(std::string_view tag) const {
  CheckListed(tag);
  return text_.find(tag) != text_.npos;
}

// The word that selects the form counts in any case.
std::string_view TCommandLine::AsWritten(std::string_view tag) const {
  if (!form_ || tag != form_->word) return tag;
  const std::string_view word = FirstWord(Arguments());
  return EqualNoCase(word, tag) ? word : tag;
}

std::optional<std::string_view> TCommandLine::Behind(std::string_view tag) const {
  CheckListed(tag);
  tag = AsWritten(tag);
  for (std::size_t at = text_.find(tag); at != text_.npos; at = text_.find(tag, at + 1)) {
    const std::size_t end = at + tag.size();
    const bool begins_word = at == 0 || text_[at - 1] == ' ';
    const bool ends_word = end == text_.size() || text_[end] == ' ';
    if (begins_word && ends_word) return text_.substr(end);
  }
  return std::nullopt;
}

TReading<std::string_view> TCommandLine::Word(std::string_view tag) const {
  const std::string_view word = FirstWord(Behind(tag).value_or(std::string_view()));
  if (word.empty()) return {TReadCode::kTagAbsent, {}};
  return {TReadCode::kRead, word.substr(0, kLongestWord)};
}

TReading<std::string_view> TCommandLine::WordOfTag(std::string_view tag) const {
  CheckListed(tag);
  std::string_view rest = Arguments();
  const auto take_word = [&rest] {
    const std::string_view word = FirstWord(rest);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()) + word.size());
    return word;
  };
  for (std::string_view word = take_word(); !word.empty(); word = take_word()) {
    if (word == tag) {
      const std::string_view value = take_word();
      if (value.empty()) break;
      return {TReadCode::kRead, value.substr(0, kLongestWord)};
    }
    const TTag* const other = form_ ? FindTag(form_->tags, word) : nullptr;
    using enum TValueKind;
    if (other && (other->kind == kAlias || other->kind == kNewAlias)) take_word();
  }
  return {TReadCode::kTagAbsent, {}};
}

TReading<bool> TCommandLine::Boolean(std::string_view tag) const {
  const TReading<std::string_view> word = Word(tag);
  if (word.code != TReadCode::kRead) return {word.code, false};
  return ToBoolean(word.value);
}

TReading<bool> TCommandLine::BooleanOfTag(std::string_view tag) const {
  const TReading<std::string_view> word = WordOfTag(tag);
  if (word.code != TReadCode::kRead) return {word.code, false};
  return ToBoolean(word.value);
}

TReading<std::int64_t> TCommandLine::Long(std::string_view tag) const {
  const TReading<std::string_view> word = Word(tag);
  return {word.code, ToLong(word.value)};
}

TReading<double> TCommandLine::Double(std::string_view tag) const {
  const TReading<std::string_view> word = Word(tag);
  return {word.code, ToDouble(word.value)};
}

TReading<std::string_view> TCommandLine::Parenthesised(std::string_view tag) const {
  const std::optional<std::string_view> rest = Behind(tag);
  if (!rest) return {TReadCode::kTagAbsent, {}};
  const std::optional<std::string_view> text = Between(*rest, '(', ')');
  if (!text) return {TReadCode::kNoParentheses, {}};
  return {TReadCode::kRead, *text};
}

std::optional<std::string_view> TCommandLine::List(std::string_view tag) const {
  const std::optional<std::string_view> rest = Behind(tag);
  return rest ? Between(*rest, '{', '}') : std::nullopt;
}

TReading<std::vector<std::string_view>> TCommandLine::Words(std::string_view tag) const {
  return ConvertElements(List(tag), [](std::string_view element) { return element; });
}

TReading<std::vector<std::int64_t>> TCommandLine::Longs(std::string_view tag) const {
  return ConvertElements(List(tag), ToLong);
}

TReading<std::vector<double>> TCommandLine::Doubles(std::string_view tag) const {
  return ConvertElements(List(tag), ToDouble);
}

std::optional<std::int64_t> TCommandLine::WholeNumber(std::string_view tag) const {
  for (auto rest = Behind(tag); rest; rest = TCommandLine(*rest).Behind(tag)) {
    const std::string_view word = FirstWord(*rest);
    if (IsWholeNumber(word)) return ScanInteger(word);
  }
  return std::nullopt;
}

std::optional<double> TCommandLine::NumberNoCase(std::string_view tag) const {
  CheckListed(tag);
  for (std::string_view rest = text_; !rest.empty();) {
    const std::string_view word = FirstWord(rest);
    rest.remove_prefix(static_cast<std::size_t>(word.data() - rest.data()) + word.size());
    if (!EqualNoCase(word, tag)) continue;
    if (const auto number = ScanNumber(FirstWord(rest))) return number;
  }
  return std::nullopt;
}

std::optional<std::vector<std::string_view>> TCommandLine::WordsAt(std::string_view tag) const {
  for (auto rest = Behind(tag); rest; rest = TCommandLine(*rest).Behind(tag)) {
    if (FirstWord(*rest).starts_with('{')) {
      return ConvertElements(Between(*rest, '{', '}'), TrimBlanks).value;
    }
  }
  return std::nullopt;
}

}  // namespace kiln
