#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a picture shows, whoever draws it. The makers of pictures (HistoryPicture.h and its
// neighbours) fill these structs; GnuplotScript.h and TextPicture.h draw them. Texts may hold
// anything: drawing makes them harmless (see Legible.h).
namespace kiln {

struct TPoint {
  double x;
  double y;
};

enum class TStroke { kLine, kPoints, kArea };

// Points that belong together. Those of a line are joined in their order, an area reaches from its
// line down to 0.
struct TSeries {
  std::string name;  // in the key; empty: not there
  TStroke stroke = TStroke::kLine;
  std::size_t look = 0;  // of which colour and shape, from 0
  std::vector<TPoint> points;
};

struct TAxis {
  std::string name;
  double lower = 0.0;
  double upper = 1.0;
  bool is_logarithmic = false;
  std::vector<std::string> ticks;  // words at 0, 1, 2 ... in place of numbers
  bool is_whole = false;           // counts something: there is nothing to tell between 1 and 2
};

enum class TShading {
  kUpwards,  // from the lower to the upper value, the darker the more
  kBothWays  // from 0 both ways, in two colours
};

// Shaded cells. The middle of the cell in column c of row r stands at c * step, r * step.
struct TGrid {
  std::size_t columns = 0;
  std::size_t rows = 0;
  double step = 1.0;
  std::vector<double> values;  // row after row; not a number where there is nothing
  TShading shading = TShading::kUpwards;
  double lower = 0.0;  // what has the lightest shade, and the darkest
  double upper = 1.0;
  std::string name;  // of what the shade stands for; empty: the shades are not explained
};

// A text in the middle of a place.
struct TNote {
  double x;
  double y;
  std::string text;
};

// A text above a place on the x axis.
struct THead {
  double x;
  std::string text;
  bool has_line = false;  // from the text down to the axis
};

struct TPanel {
  std::string title;
  TAxis x;
  TAxis y;
  bool is_square = false;     // both axes of the same length
  bool is_downwards = false;  // the y axis begins at the top
  std::vector<TSeries> series;
  std::optional<TGrid> grid;
  std::vector<TNote> notes;  // in cells of the grid
  std::vector<THead> heads;
  std::vector<double> rules;  // lines across at these y
  bool has_diagonal = false;  // a thin line where x and y are equal
};

struct TPicture {
  std::string title;
  std::vector<TPanel> panels;  // at least one
  bool is_stacked = false;     // panels stand one above the other, to be compared along the x axis
};

// How many panels a picture has at most; makers leave out the rest and say so in the title.
inline constexpr std::size_t kMaxPanels = 36;

// ", first 36 of 40 outputs", what a title says of a picture that shows no more than those; empty
// where it shows all.
inline std::string FirstOf(std::size_t shown, std::size_t all, std::string_view what) {
  if (shown == all) return {};
  return ", first " + std::to_string(shown) + " of " + std::to_string(all) + std::string(what);
}

}  // namespace kiln
