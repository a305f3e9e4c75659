#include "Plot/PanelLayout.h"

#include <algorithm>
#include <cmath>

#include "Plot/AxisTicks.h"
#include "Plot/Legible.h"

namespace kiln {

namespace {

constexpr std::size_t kHeadRows = 3;
constexpr std::size_t kLongestHead = 32;
constexpr double kTickLetterWidth = 8.2;  // in words that must not be cut off
constexpr double kNumberWidth = 23.0;     // of three digits, which are never turned
constexpr double kGap = 8.0;              // between a text and what is next to it

std::size_t Length(const std::string& text, std::size_t most) {
  return std::min(WidthOf(Characters(text)), most);
}

std::size_t LongestTick(const TAxis& axis) {
  std::size_t longest = 0;
  for (const std::string& tick : axis.ticks)
    longest = std::max(longest, Length(tick, kLongestTick));
  return longest;
}

// Sizes of what stands within the axes, by the number of panels.
struct TSizes {
  double wide;    // of curves
  double square;  // of squares and grids
};

TSizes SizesFor(std::size_t panels) {
  if (panels == 1) return {540.0, 420.0};
  if (panels == 2) return {340.0, 300.0};
  return panels <= 4 ? TSizes{290.0, 250.0} : TSizes{210.0, 190.0};
}

struct TArea {
  double width;
  double height;
};

TArea AreaOf(const TPanel& panel, const TPicture& picture) {
  const std::size_t panels = picture.panels.size();
  constexpr double kFlatness = 0.62;
  constexpr double kFlatnessOfStacked = 0.2;
  const TSizes sizes = SizesFor(picture.is_stacked ? 1 : panels);
  if (picture.is_stacked && panels > 1) return {sizes.wide, sizes.wide * kFlatnessOfStacked};
  if (panel.is_square) return {sizes.square, sizes.square};
  if (!panel.grid) return {sizes.wide, sizes.wide * kFlatness};
  // Cells with words at them have to be as high as a line.
  const auto columns = static_cast<double>(panel.grid->columns);
  const auto rows = static_cast<double>(panel.grid->rows);
  const bool has_words = !panel.x.ticks.empty() || !panel.y.ticks.empty();
  const double least = has_words ? kLineHeight + 1.0 : 0.0;
  // Where a few words stand side by side, cells are as wide as these.
  const double word = static_cast<double>(LongestTick(panel.x)) * kLetterWidth + 2 * kGap;
  const double largest = std::clamp(word, 64.0, 110.0);
  const double cell = std::clamp(sizes.square / std::max(columns, rows), least, largest);
  // Nothing is so flat or so narrow that it could not be seen.
  constexpr double kThinnest = 60.0;
  return {std::max(columns * cell, kThinnest), std::max(rows * cell, kThinnest)};
}

std::size_t NumNamed(const TPanel& panel) {
  return static_cast<std::size_t>(
      std::ranges::count_if(panel.series, [](const TSeries& s) { return !s.name.empty(); }));
}

// Letters of a key in one line.
std::size_t KeyLength(const TPanel& panel) {
  constexpr std::size_t kSample = 7;
  std::size_t length = 0;
  for (const TSeries& series : panel.series) {
    if (!series.name.empty()) length += Length(series.name, kLongestName) + kSample;
  }
  return length;
}

double KeyWidthBeside(const TPanel& panel) {
  constexpr double kSample = 36.0;
  std::size_t longest = 0;
  for (const TSeries& series : panel.series) {
    longest = std::max(longest, Length(series.name, kLongestName));
  }
  return static_cast<double>(longest) * kTickLetterWidth + kSample;
}

// What stands around an area.
struct TMargins {
  double left = 0.0;
  double right = 0.0;
  double above = 0.0;
  double below = 0.0;

  void Widen(const TMargins& other) {
    left = std::max(left, other.left);
    right = std::max(right, other.right);
    above = std::max(above, other.above);
    below = std::max(below, other.below);
  }
};

// The place of one panel as if it stood alone, and what it needs around it.
struct TNeeds {
  TPanelPlace place;
  TMargins margins;
};

TNeeds NeedsOf(const TPanel& panel, const TPicture& picture) {
  const TArea area = AreaOf(panel, picture);
  TNeeds needs = {};
  TPanelPlace& place = needs.place;
  place.width = area.width;
  place.height = area.height;
  place.below = kLineHeight;
  place.heads = PlaceHeads(panel, area.width, kLetterWidth);

  place.beside = panel.y.ticks.empty()
                     ? NumberWidth(panel.y)
                     : static_cast<double>(LongestTick(panel.y)) * kTickLetterWidth;
  const double x_words = static_cast<double>(LongestTick(panel.x)) * kLetterWidth;
  const double cells = std::max(panel.x.upper - panel.x.lower, 1.0);
  place.turns_ticks = x_words > std::max(area.width / cells - kGap, kNumberWidth);
  if (place.turns_ticks) place.below = x_words * kTickLetterWidth / kLetterWidth;
  place.has_key_beside = static_cast<double>(KeyLength(panel)) * kLetterWidth > area.width;

  TMargins& margins = needs.margins;
  margins.left = place.beside + 2 * kGap + (panel.y.name.empty() ? 0.0 : kLineHeight + kGap);
  margins.below = place.below + 2 * kGap + (panel.x.name.empty() ? 0.0 : kLineHeight + kGap);
  // Half of the last number stands beyond the end of the axis.
  margins.right = panel.x.ticks.empty() ? std::max(2 * kGap, NumberWidth(panel.x) / 2) : 2 * kGap;
  margins.right += ScaleWidth(panel);
  if (place.has_key_beside) margins.right += KeyWidthBeside(panel);
  for (const TPlacedHead& head : place.heads) {
    const double height = static_cast<double>(head.row + 1) * kLineHeight;
    place.heads_height = std::max(place.heads_height, height);
  }
  const bool has_key_above = NumNamed(panel) > 0 && !place.has_key_beside;
  margins.above = kGap + place.heads_height + (has_key_above ? kLineHeight + kGap : 0.0);
  place.title_above = margins.above + kGap;
  if (!panel.title.empty()) margins.above += kLineHeight + kGap;
  return needs;
}

// Titles stand above their pictures in large letters; the longest are shortened.
double TitleWidth(const TPicture& picture) {
  constexpr std::size_t kMost = 60;
  return static_cast<double>(Length(picture.title, kMost)) * kTitleLetterWidth + 3 * kGap;
}

}  // namespace

std::size_t PanelsAcross(std::size_t panels) {
  constexpr double kShape = 1.3;  // a little wider than high
  if (panels <= 3) return panels;
  return static_cast<std::size_t>(std::lround(std::sqrt(kShape * static_cast<double>(panels))));
}

std::vector<TPlacedHead> PlaceHeads(const TPanel& panel, double length, double letter) {
  std::vector<THead> heads = panel.heads;
  std::ranges::stable_sort(heads, {}, &THead::x);
  std::vector<TPlacedHead> placed;
  if (heads.empty()) return placed;
  const double room = length * kHeadRows / letter / static_cast<double>(heads.size()) - 2.0;
  const auto most = static_cast<std::size_t>(std::clamp(room, 3.0, 1.0 * kLongestHead));
  std::vector<double> ends(kHeadRows, -letter);  // of the last text in each row
  for (const THead& head : heads) {
    TPlacedHead candidate = {Legible(head.text, most), 0.0, 0};
    const double width = static_cast<double>(WidthOf(Characters(candidate.text))) * letter;
    const double along = (head.x - panel.x.lower) / (panel.x.upper - panel.x.lower) * length;
    candidate.middle = std::clamp(along, std::min(width / 2, length / 2),
                                  std::max(length - width / 2, length / 2));
    const double begin = candidate.middle - width / 2;
    const auto row = std::ranges::find_if(ends, [&](double end) { return end + letter <= begin; });
    if (head.text.empty() || row == ends.end()) continue;
    *row = begin + width;
    candidate.row = static_cast<std::size_t>(row - ends.begin());
    placed.push_back(std::move(candidate));
  }
  return placed;
}

double NumberWidth(const TAxis& axis) {
  constexpr std::size_t kMostNumbers = 8;
  std::size_t longest = 5;  // even where all are shorter
  for (const TTick& tick : RoundTicks(axis, kMostNumbers)) {
    longest = std::max(longest, tick.text.size());
  }
  return static_cast<double>(longest) * kLetterWidth;
}

double ScaleWidth(const TPanel& panel) {
  if (!panel.grid || panel.grid->name.empty()) return 0.0;
  constexpr double kBar = 28.0;
  return kBar + NumberWidth({"", panel.grid->lower, panel.grid->upper, false, {}});
}

TPictureLayout LayOut(const TPicture& picture) {
  std::vector<TNeeds> needs;
  TMargins margins;
  TArea area = {0.0, 0.0};
  for (const TPanel& panel : picture.panels) {
    needs.push_back(NeedsOf(panel, picture));
    margins.Widen(needs.back().margins);
    area.width = std::max(area.width, needs.back().place.width);
    area.height = std::max(area.height, needs.back().place.height);
  }
  double title_above = 0.0;
  for (const TNeeds& each : needs) title_above = std::max(title_above, each.place.title_above);
  // All panels have the same room, so that their axes and titles stand in line.
  const double across = margins.left + area.width + margins.right;
  const double down = margins.above + area.height + margins.below;
  const std::size_t columns = picture.is_stacked ? 1 : PanelsAcross(needs.size());
  const std::size_t rows = (needs.size() + columns - 1) / columns;
  TPictureLayout layout = {
      std::max(static_cast<double>(columns) * across + kGap, TitleWidth(picture)),
      kTitleHeight + static_cast<double>(rows) * down + kGap,
      {}};
  for (std::size_t i = 0; i < needs.size(); ++i) {
    const std::size_t row = i / columns;
    TPanelPlace place = needs[i].place;
    place.left = static_cast<double>(i % columns) * across + margins.left;
    place.top = kTitleHeight + static_cast<double>(row) * down + margins.above;
    place.title_above = title_above;
    layout.panels.push_back(std::move(place));
  }
  return layout;
}

}  // namespace kiln
