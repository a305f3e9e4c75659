#include "Plot/TCanvas.h"

#include <algorithm>
#include <cmath>

#include "Plot/Legible.h"

namespace kiln {

namespace {

constexpr char32_t kFirstPattern = 0x2800;  // of braille in Unicode

// The bits of the dots in a braille pattern, by line and column.
constexpr unsigned char kDotBits[TCanvas::kDown][TCanvas::kAcross] = {
    {0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};

constexpr unsigned kUpperDots = 0x01 | 0x08;
constexpr unsigned kMiddleDots = 0x02 | 0x10 | 0x04 | 0x20;
constexpr unsigned kLowerDots = 0x40 | 0x80;

// The character of ASCII that looks most like some dots.
char DotsInAscii(unsigned dots) {
  const bool is_high = (dots & kUpperDots) != 0;
  const bool is_low = (dots & kLowerDots) != 0;
  if (is_high && is_low) return '|';
  if ((dots & kMiddleDots) != 0) return '-';
  return is_high ? '\'' : '.';
}

struct TSubstitute {
  char32_t character;
  char ascii;
};

constexpr TSubstitute kSubstitutes[] = {{U'│', '|'}, {U'─', '-'}, {U'└', '+'}, {U'┤', '+'},
                                        {U'┬', '+'}, {U'┊', ':'}, {U'░', '.'}, {U'▒', ':'},
                                        {U'▓', '*'}, {U'█', '#'}, {U'…', '.'}, {U'−', '-'}};

char32_t InAscii(char32_t character) {
  if (character < 0x80) return character;
  if (character > kFirstPattern && character <= kFirstPattern + 0xFF) {
    return static_cast<char32_t>(DotsInAscii(character - kFirstPattern));
  }
  const auto* const found = std::ranges::find(kSubstitutes, character, &TSubstitute::character);
  return found == std::end(kSubstitutes) ? U'?' : static_cast<char32_t>(found->ascii);
}

}  // namespace

TCanvas::TCanvas(std::size_t columns, std::size_t lines)
    : columns_(static_cast<int>(columns)),
      lines_(static_cast<int>(lines)),
      characters_(columns * lines),
      dots_(columns * lines) {}

void TCanvas::Put(int column, int line, char32_t character) {
  if (IsInside(column, line)) characters_[Index(column, line)] = character;
}

void TCanvas::Write(int column, int line, std::u32string_view text) {
  for (const char32_t character : text) {
    Put(column, line, character);
    if (WidthOf(character) > 1) Put(column + 1, line, kRest);
    column += static_cast<int>(WidthOf(character));
  }
}

bool TCanvas::IsEmpty(int column, int line) const {
  return !IsInside(column, line) || characters_[Index(column, line)] == 0;
}

void TCanvas::PutDot(int x, int y) {
  if (x < 0 || y < 0 || !IsInside(x / kAcross, y / kDown)) return;
  dots_[Index(x / kAcross, y / kDown)] |= kDotBits[y % kDown][x % kAcross];
}

void TCanvas::DrawLine(double from_x, double from_y, double to_x, double to_y) {
  const double length = std::max(std::abs(to_x - from_x), std::abs(to_y - from_y));
  const int steps = static_cast<int>(std::min(std::ceil(length), 1e5));
  for (int i = 0; i <= steps; ++i) {
    const double share = steps == 0 ? 0.0 : static_cast<double>(i) / steps;
    PutDot(static_cast<int>(std::lround(from_x + share * (to_x - from_x))),
           static_cast<int>(std::lround(from_y + share * (to_y - from_y))));
  }
}

void TCanvas::Place(int column, int line, const TCanvas& other) {
  for (int l = 0; l < other.lines_; ++l) {
    for (int c = 0; c < other.columns_; ++c) {
      if (!IsInside(column + c, line + l)) continue;
      characters_[Index(column + c, line + l)] = other.characters_[other.Index(c, l)];
      dots_[Index(column + c, line + l)] = other.dots_[other.Index(c, l)];
    }
  }
}

std::string TCanvas::Text(TCharacters characters) const {
  const bool is_ascii = characters == TCharacters::kAscii;
  std::string text;
  for (int line = 0; line < lines_; ++line) {
    std::u32string shown;
    for (int column = 0; column < columns_; ++column) {
      const std::size_t i = Index(column, line);
      char32_t character = characters_[i];
      if (character == 0 && dots_[i] != 0) character = kFirstPattern + dots_[i];
      if (character == 0) character = U' ';
      // A wide letter becomes two signs of ASCII, one for each of its columns.
      if (is_ascii) character = InAscii(character);
      if (character != kRest) shown += character;
    }
    shown.resize(shown.find_last_not_of(U' ') + 1);
    text += Utf8(shown) += '\n';
  }
  return text;
}

}  // namespace kiln
