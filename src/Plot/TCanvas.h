#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Plot/TextPicture.h"

namespace kiln {

// A sheet of characters. Beneath each stand eight dots, two across and four down, that show where
// no character was put. What lies beyond the sheet is not drawn.
class TCanvas {
 public:
  static constexpr int kAcross = 2;
  static constexpr int kDown = 4;

  TCanvas(std::size_t columns, std::size_t lines);

  int Columns() const { return columns_; }
  int Lines() const { return lines_; }

  void Put(int column, int line, char32_t character);
  // A wide character takes two columns.
  void Write(int column, int line, std::u32string_view text);
  bool IsEmpty(int column, int line) const;  // of characters; true beyond the sheet

  // Dots are counted like characters, from the upper left corner.
  void PutDot(int x, int y);
  void DrawLine(double from_x, double from_y, double to_x, double to_y);

  // Puts another sheet with its upper left corner there.
  void Place(int column, int line, const TCanvas& other);

  // The lines, each without the blanks at its end.
  std::string Text(TCharacters characters) const;

 private:
  static constexpr char32_t kRest = 0xFFFFFFFF;

  bool IsInside(int column, int line) const {
    return column >= 0 && column < columns_ && line >= 0 && line < lines_;
  }
  std::size_t Index(int column, int line) const {
    return static_cast<std::size_t>(line) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column);
  }

  int columns_;
  int lines_;
  std::vector<char32_t> characters_;  // 0: nothing; kRest: the second half of a wide one
  std::vector<unsigned char> dots_;   // as in the braille patterns of Unicode
};

}  // namespace kiln
