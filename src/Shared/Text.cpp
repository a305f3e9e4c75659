#include "Shared/Text.h"

#include <algorithm>

namespace kiln {

namespace {

char FoldChar(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), FoldChar);
  return folded;
}

bool EqualNoCase(std::string_view left, std::string_view right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](char a, char b) { return FoldChar(a) == FoldChar(b); });
}

bool LessNoCase(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (left[i] == right[i]) continue;  // most are, and need no folding
    const auto a = static_cast<unsigned char>(FoldChar(left[i]));
    const auto b = static_cast<unsigned char>(FoldChar(right[i]));
    if (a != b) return a < b;
  }
  return left.size() < right.size();
}

bool HasWord(std::string_view words, std::string_view word) {
  for (;;) {
    const std::size_t blank = words.find(' ');
    if (EqualNoCase(words.substr(0, blank), word)) return true;
    if (blank == words.npos) return false;
    words.remove_prefix(blank + 1);
  }
}

// The control characters U+0080 to U+009F are bytes behind 0xC2 in UTF-8, and stand alone in older
// character sets; behind any other byte beyond ASCII such a byte is a part of a character.
std::string Printable(std::string_view text) {
  std::string shown;
  unsigned char previous = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool begins_character = previous < 0x80 || previous == 0xC2;
    if ((byte < 0x20 && c != '\n' && c != '\t') || byte == 0x7F) {
      shown += {'^', static_cast<char>(byte ^ 0x40)};
    } else if (byte >= 0x80 && byte < 0xA0 && begins_character) {
      shown += '?';
    } else {
      shown += c;
    }
    previous = byte;
  }
  return shown;
}

std::string Counted(std::size_t count, std::string_view noun) {
  std::string text = std::to_string(count);
  text.append(" ").append(noun);
  if (count != 1) text += 's';
  return text;
}

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

}  // namespace kiln
