#include "Interpreter/CommandLine.h"

#include <algorithm>

#include "Shared/NumberScan.h"
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

bool IsWholeNumber(std::string_view word) {
  if (word.starts_with('-') || word.starts_with('+')) word.remove_prefix(1);
  return !word.empty() && word.find_first_not_of("0123456789") == word.npos;
}

Reading<bool> ToBoolean(std::string_view text) {
  text = TrimBlanks(text);
  if (EqualNoCase(text, "true") || EqualNoCase(text, "on")) return {ReadCode::kRead, true};
  if (EqualNoCase(text, "false") || EqualNoCase(text, "off")) return {ReadCode::kRead, false};
  return {ReadCode::kNotABoolean, false};
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
  Reading<std::vector<decltype(convert(*list))>> reading{ReadCode::kTagAbsent, {}};
  if (!list) return reading;
  reading.code = ReadCode::kRead;
  ForEachElement(*list,
                 [&](std::string_view element) { reading.value.push_back(convert(element)); });
  return reading;
}

}  // namespace

std::string_view CommandLine::CommandWord() const {
  return FirstWord(text_);
}

std::optional<std::string_view> CommandLine::Behind(std::string_view tag) const {
  for (std::size_t at = text_.find(tag); at != text_.npos; at = text_.find(tag, at + 1)) {
    const std::size_t end = at + tag.size();
    const bool begins_word = at == 0 || text_[at - 1] == ' ';
    const bool ends_word = end == text_.size() || text_[end] == ' ';
    if (begins_word && ends_word) return text_.substr(end);
  }
  return std::nullopt;
}

Reading<std::string_view> CommandLine::Word(std::string_view tag) const {
  const std::string_view word = FirstWord(Behind(tag).value_or(std::string_view()));
  if (word.empty()) return {ReadCode::kTagAbsent, {}};
  return {ReadCode::kRead, word.substr(0, kLongestWord)};
}

Reading<bool> CommandLine::Boolean(std::string_view tag) const {
  const Reading<std::string_view> word = Word(tag);
  if (word.code != ReadCode::kRead) return {word.code, false};
  return ToBoolean(word.value);
}

Reading<std::int64_t> CommandLine::Long(std::string_view tag) const {
  const Reading<std::string_view> word = Word(tag);
  return {word.code, ToLong(word.value)};
}

Reading<double> CommandLine::Double(std::string_view tag) const {
  const Reading<std::string_view> word = Word(tag);
  return {word.code, ToDouble(word.value)};
}

Reading<std::string_view> CommandLine::Parenthesised(std::string_view tag) const {
  const std::optional<std::string_view> rest = Behind(tag);
  if (!rest) return {ReadCode::kTagAbsent, {}};
  const std::optional<std::string_view> text = Between(*rest, '(', ')');
  if (!text) return {ReadCode::kNoParentheses, {}};
  return {ReadCode::kRead, *text};
}

std::optional<std::string_view> CommandLine::List(std::string_view tag) const {
  const std::optional<std::string_view> rest = Behind(tag);
  return rest ? Between(*rest, '{', '}') : std::nullopt;
}

Reading<std::vector<std::string_view>> CommandLine::Words(std::string_view tag) const {
  return ConvertElements(List(tag), [](std::string_view element) { return element; });
}

Reading<std::vector<std::int64_t>> CommandLine::Longs(std::string_view tag) const {
  return ConvertElements(List(tag), ToLong);
}

Reading<std::vector<double>> CommandLine::Doubles(std::string_view tag) const {
  return ConvertElements(List(tag), ToDouble);
}

Reading<std::vector<bool>> CommandLine::Booleans(std::string_view tag) const {
  const Reading<std::vector<std::string_view>> words = Words(tag);
  Reading<std::vector<bool>> reading{words.code, {}};
  for (const std::string_view word : words.value) {
    const Reading<bool> element = ToBoolean(word);
    if (element.code != ReadCode::kRead) return {element.code, {}};
    reading.value.push_back(element.value);
  }
  return reading;
}

std::optional<std::int64_t> CommandLine::WholeNumber(std::string_view tag) const {
  for (auto rest = Behind(tag); rest; rest = CommandLine(*rest).Behind(tag)) {
    const std::string_view word = FirstWord(*rest);
    if (IsWholeNumber(word)) return ScanInteger(word);
  }
  return std::nullopt;
}

}  // namespace kiln
