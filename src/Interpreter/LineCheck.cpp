#include "Interpreter/LineCheck.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <system_error>
#include <utility>
#include <vector>

#include "Shared/NumberFormat.h"
#include "Shared/NumberScan.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

// Whether a word is a number that is neither too large for a double nor too small.
bool IsNumber(std::string_view word) {
  if (word.starts_with('-') || word.starts_with('+')) word.remove_prefix(1);
  if (word.starts_with('-')) return false;
  const bool is_hexadecimal = word.starts_with("0x") || word.starts_with("0X");
  if (is_hexadecimal) word.remove_prefix(2);
  const auto format = is_hexadecimal ? std::chars_format::hex : std::chars_format::general;
  double value = 0.0;
  const char* const last = word.data() + word.size();
  const auto [end, fault] = std::from_chars(word.data(), last, value, format);
  return fault == std::errc() && end == last;
}

bool IsBoolean(std::string_view word) {
  return HasWord("true false on off", word);
}

// "pattern or batch", "max, min or average".
std::string OneOf(std::string_view words) {
  std::string text(words);
  const std::size_t last = text.rfind(' ');
  if (last == text.npos) return text;
  text.replace(last, 1, " or ");
  for (std::size_t at = text.find(' '); at < last; at = text.find(' ', at + 2)) {
    text.insert(at, 1, ',');
  }
  return text;
}

// Goes through the words of a line behind those that choose its form.
class TLineCheck {
 public:
  TLineCheck(const TCommand& command, const TForm& form, std::string_view line)
      : form_(form), name_(command.word), rest_(line) {
    positional_ = form.Positional(command.word);
    TakeWord();
    if (form.word.empty()) return;
    TakeWord();
    name_.append(" ").append(form.word);
  }

  void Run() {
    if (positional_) CheckValue(*positional_);
    while (!rest_.empty()) {
      const std::string_view word = TakeWord();
      const TTag* const tag = TagOf(word);
      if (!tag) NoTag(word);
      if (std::ranges::find(seen_, tag) != seen_.end()) Odd(tag->name, " is given twice");
      seen_.push_back(tag);
      CheckValue(*tag);
    }
  }

 private:
  // Ends the check with what is wrong.
  template <typename... TParts>
  [[noreturn]] static void Odd(const TParts&... parts) {
    TOddity oddity;
    (oddity.fault.append(parts), ...);
    throw oddity;
  }

  // A number in a place where the command reads another one.
  [[noreturn]] static void Misread(const TTag& tag, std::string_view word, std::string_view kind,
                                   std::string_view reading) {
    TOddity oddity;
    oddity.fault.append(tag.name).append(" ").append(word).append(kind);
    oddity.effect.append(tag.name).append(" ").append(word).append(" is read as ").append(reading);
    throw oddity;
  }

  std::string_view TakeWord() {
    rest_ = TrimBlanks(rest_);
    const std::string_view word = rest_.substr(0, rest_.find(' '));
    rest_ = TrimBlanks(rest_.substr(word.size()));
    return word;
  }

  // The text between brackets that comes next.
  std::string_view TakeBrackets(const TTag& tag, char open, char close, std::string_view what) {
    const std::size_t end = rest_.find(close);
    if (!rest_.starts_with(open) || end == rest_.npos) Odd(tag.name, " takes ", what);
    const std::string_view inside = rest_.substr(1, end - 1);
    rest_ = TrimBlanks(rest_.substr(end + 1));
    return inside;
  }

  const TTag* TagOf(std::string_view word) const {
    if (const TTag* tag = FindTag(form_.tags, word)) return tag == positional_ ? nullptr : tag;
    const TTag* const tag = FindNoCase(form_.tags, word, &TTag::name);
    return tag && tag->kind == TValueKind::kAnyCaseDouble ? tag : nullptr;
  }

  [[noreturn]] void NoTag(std::string_view word) const {
    std::vector<std::string_view> names;
    for (const TTag& tag : form_.tags) {
      if (&tag != positional_) names.push_back(tag.name);
    }
    const std::string_view nearest = NearestWord(word, names);
    if (nearest.empty()) Odd(word, " is no tag of ", name_);
    Odd(word, " is no tag of ", name_, ": ", nearest, "?");
  }

  void CheckValue(const TTag& tag) {
    if (tag.kind == TValueKind::kPhrase) {
      rest_ = {};
      return;
    }
    if (rest_.empty()) Odd(tag.name, " has no value");
    if (tag.kind == TValueKind::kPath) {
      TakeBrackets(tag, '(', ')', "a file name in parentheses");
    } else if (IsList(tag.kind)) {
      CheckList(tag);
    } else {
      CheckWord(tag, TakeWord());
    }
  }

  void CheckList(const TTag& tag) {
    std::string_view list = TakeBrackets(tag, '{', '}', "a list in braces");
    if (TrimBlanks(list).empty()) return;
    for (std::size_t comma = 0; comma != list.npos;) {
      comma = list.find(',');
      CheckElement(tag, TrimBlanks(list.substr(0, comma)));
      if (comma != list.npos) list.remove_prefix(comma + 1);
    }
  }

  static void CheckElement(const TTag& tag, std::string_view element) {
    if (element.empty()) Odd(tag.name, " has an empty element");
    if (tag.kind == TValueKind::kLongs) CheckLong(tag, element);
    if (tag.kind == TValueKind::kDoubles) CheckDouble(tag, element);
  }

  void CheckWord(const TTag& tag, std::string_view word) const {
    // The command would find it as a tag, unless that counts before a number only.
    const TTag* const other = TagOf(word);
    if (other && other->kind != TValueKind::kSeed && other->kind != TValueKind::kAnyCaseDouble) {
      Odd(tag.name, " has no value: ", word, " is a tag");
    }
    switch (tag.kind) {
      case TValueKind::kLong:
      case TValueKind::kSeed:
        CheckLong(tag, word);
        break;
      case TValueKind::kDouble:
      case TValueKind::kAnyCaseDouble:
        CheckDouble(tag, word);
        break;
      case TValueKind::kBoolean:
        CheckBoolean(tag, word);
        break;
      case TValueKind::kChoice:
        if (!HasWord(tag.words, word)) Odd(tag.name, " takes ", OneOf(tag.words));
        break;
      default:
        break;
    }
  }

  static void CheckLong(const TTag& tag, std::string_view word) {
    if (IsWholeNumber(word)) return;
    Misread(tag, word, " is no whole number", std::to_string(ScanInteger(word).value_or(0)));
  }

  static void CheckDouble(const TTag& tag, std::string_view word) {
    if (IsNumber(word)) return;
    Misread(tag, word, " is no number", FormatGeneral(ScanNumber(word).value_or(0.0), 8));
  }

  static void CheckBoolean(const TTag& tag, std::string_view word) {
    if (!IsBoolean(word)) Odd(tag.name, " takes on or off");
  }

  const TForm& form_;
  const TTag* positional_;
  std::string name_;       // of the form
  std::string_view rest_;  // what is not checked yet, without blanks at its ends
  std::vector<const TTag*> seen_;
};

// How many letters are to be changed, put in, left out, or swapped with their neighbours, to make
// one word of the other; letters of either case count as the same.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before_last;
  std::vector<std::size_t> last(b.size() + 1);
  std::iota(last.begin(), last.end(), 0U);
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::vector<std::size_t> row(b.size() + 1, i);
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({changed, last[j] + 1, row[j - 1] + 1});
      const bool are_swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (are_swapped) row[j] = std::min(row[j], before_last[j - 2] + 1);
    }
    before_last = std::exchange(last, std::move(row));
  }
  return last.back();
}

}  // namespace

std::optional<TOddity> FindOddity(const TCommand& command, const TForm& form,
                                  std::string_view line) {
  try {
    TLineCheck(command, form, line).Run();
    return std::nullopt;
  } catch (const TOddity& oddity) {
    return oddity;
  }
}

std::string_view NearestWord(std::string_view typed, std::span<const std::string_view> words) {
  constexpr std::size_t kLongestTyped = 80;
  if (typed.size() > kLongestTyped) return {};
  std::string_view nearest;
  std::size_t least = std::min<std::size_t>(typed.size() / 3, 2) + 1;
  for (const std::string_view word : words) {
    const std::size_t distance = Distance(FoldCase(typed), FoldCase(word));
    if (distance >= least) continue;
    least = distance;
    nearest = word;
  }
  return nearest;
}

}  // namespace kiln
