#include "Plot/Legible.h"

#include <algorithm>

namespace kiln {

namespace {

constexpr char32_t kDots = U'…';

// Takes a character off the front of `text`; a byte that begins none is a question mark.
char32_t TakeCharacter(std::string_view& text) {
  const auto byte_at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned first = byte_at(0);
  const std::size_t size = first < 0x80                     ? 1
                           : first >= 0xC2 && first < 0xE0  ? 2
                           : first >= 0xE0 && first < 0xF0  ? 3
                           : first >= 0xF0 && first <= 0xF4 ? 4
                                                            : 0;
  char32_t character = size == 1 ? first : first & (0x7FU >> size);
  bool is_whole = size > 0 && size <= text.size();
  for (std::size_t i = 1; is_whole && i < size; ++i) {
    is_whole = (byte_at(i) & 0xC0U) == 0x80;
    character = character << 6U | (byte_at(i) & 0x3FU);
  }
  constexpr char32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};  // by size
  const bool is_surrogate = character >= 0xD800 && character < 0xE000;
  is_whole = is_whole && character >= kShortest[size] && character <= 0x10FFFF && !is_surrogate;
  text.remove_prefix(is_whole ? size : 1);
  return is_whole ? character : U'?';
}

// Control characters, and those that change the direction of a text or that no document may hold.
bool IsControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
         (character >= 0x2028 && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069) || (character & 0xFFFEU) == 0xFFFE;
}

struct TRange {
  char32_t first;
  char32_t last;
};

// Hangul, radicals and kana up to ideographs and Yi, forms for vertical lines and full width,
// pictures, and the planes of rarer ideographs.
constexpr TRange kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},  {0xA960, 0xA97C}, {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},  {0xFFE0, 0xFFE6}, {0x1F300, 0x1F64F},
    {0x1F680, 0x1F6FF}, {0x1F900, 0x1FAFF}, {0x20000, 0x3FFFD}};

}  // namespace

std::size_t WidthOf(char32_t character) {
  const auto holds = [character](const TRange& range) {
    return character >= range.first && character <= range.last;
  };
  return std::ranges::any_of(kWide, holds) ? 2 : 1;
}

std::size_t WidthOf(std::u32string_view characters) {
  std::size_t width = 0;
  for (const char32_t character : characters) width += WidthOf(character);
  return width;
}

std::u32string Characters(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) characters += TakeCharacter(text);
  return characters;
}

std::string Utf8(std::u32string_view characters) {
  std::string text;
  const auto add = [&](char32_t byte) { text += static_cast<char>(byte); };
  for (const char32_t c : characters) {
    if (c < 0x80) {
      add(c);
      continue;
    }
    const unsigned more = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    add(((0xFF00U >> (more + 1)) & 0xFFU) | c >> (6 * more));
    for (unsigned i = more; i-- > 0;) add(0x80U | (c >> (6 * i) & 0x3FU));
  }
  return text;
}

std::string Legible(std::string_view text, std::size_t most) {
  std::u32string legible;
  std::size_t width = 0;
  while (!text.empty() && width <= most) {
    const char32_t character = TakeCharacter(text);
    legible += IsControl(character) ? U' ' : character;
    width += WidthOf(legible.back());
  }
  if (width <= most) return Utf8(legible);
  while (width >= most) {
    width -= WidthOf(legible.back());
    legible.pop_back();
  }
  return Utf8(legible += kDots);
}

}  // namespace kiln
