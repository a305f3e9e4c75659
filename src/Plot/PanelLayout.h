#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Plot/TPicture.h"

// Where the parts of a picture stand, so that no text meets another one. Lengths are in points as
// long as a letter of the usual size is 7.2 of them wide.
namespace kiln {

// A head where it has found room: `middle` from the left end of the axis, row 0 next to the panel.
struct TPlacedHead {
  std::string text;
  double middle;
  std::size_t row;
};

// What the explanation of shades takes to the right of a panel, with its numbers.
double ScaleWidth(const TPanel& panel);

// Puts the heads of a panel, in the order of their places, into rows above an axis of this length,
// with letters of this width. Texts are shortened to what is there for each; those that would
// overlap others even so are left out.
std::vector<TPlacedHead> PlaceHeads(const TPanel& panel, double length, double letter);

struct TPanelPlace {
  double left;  // of the area within the axes, from the left and the upper end of the picture
  double top;
  double width;
  double height;
  double below;         // what the ticks of the x axis take
  double beside;        // what those of the y axis take
  bool turns_ticks;     // those of the x axis stand upright
  bool has_key_beside;  // the key stands to the right, not above the heads
  std::vector<TPlacedHead> heads;
  double heads_height;
  double title_above;  // how far the middle of the title is above the area
};

struct TPictureLayout {
  double width;
  double height;
  std::vector<TPanelPlace> panels;
};

inline constexpr double kLetterWidth = 7.2;
inline constexpr double kTitleLetterWidth = 9.6;
inline constexpr double kLineHeight = 17.0;
inline constexpr std::size_t kLongestTick = 26;  // characters of a word at an axis
inline constexpr std::size_t kLongestName = 26;  // of a series in the key
inline constexpr double kTitleHeight = 36.0;

// What the numbers along an axis take beside it.
double NumberWidth(const TAxis& axis);

TPictureLayout LayOut(const TPicture& picture);

// How many panels stand side by side where there is room for all.
std::size_t PanelsAcross(std::size_t panels);

}  // namespace kiln
