#include "Plot/TextPicture.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "Plot/AxisTicks.h"
#include "Plot/Legible.h"
#include "Plot/PanelLayout.h"
#include "Plot/TCanvas.h"
#include "Shared/NumberFormat.h"

namespace kiln {

namespace {

constexpr std::u32string_view kMarks = U"ox+*#@%&=~vszwnuc";
constexpr std::u32string_view kShades = U" ░▒▓█";

char32_t MarkOf(std::size_t look) {
  return kMarks[look % kMarks.size()];
}

// Series with names are told apart by their marks; a line alone, and lines that are explained in
// another way, are made of dots.
bool IsOfDots(const TSeries& series) {
  return series.name.empty() || series.stroke == TStroke::kArea ||
         (series.stroke == TStroke::kLine && series.look == 0);
}

std::u32string Short(std::string_view text, int most) {
  return Characters(Legible(text, static_cast<std::size_t>(std::max(most, 1))));
}

int Size(std::u32string_view text) {
  return static_cast<int>(WidthOf(text));
}

// One panel on a sheet of its own.
class TTextPanel {
 public:
  // An area of about this size within the axes; grids take what they need of it.
  TTextPanel(const TPanel& panel, int columns, int lines) : panel_(panel) {
    const bool has_words = !panel.y.ticks.empty();
    y_ticks_ = has_words ? Words(panel.y, columns / 3) : Numbers(panel.y, lines / 3);
    for (const auto& [at, text] : y_ticks_) left_ = std::max(left_, Size(text) + 1);
    width_ = std::max(columns - left_ - 2, 8);
    height_ = lines;
    if (panel.grid) FitGrid(*panel.grid);
    heads_ = PlaceHeads(panel, width_, 1.0);
    for (const TPlacedHead& head : heads_) top_ = std::max(top_, static_cast<int>(head.row) + 1);
    if (!panel.title.empty()) ++top_;
    if (!panel.y.name.empty()) ++top_;
  }

  // The lines that the panel takes.
  int Lines() const {
    const int name = panel_.x.name.empty() ? 0 : 1;
    const int scale = HasScale() ? 1 : 0;
    return top_ + height_ + 2 + name + scale;
  }

  TCanvas Draw(int columns, int lines) {
    TCanvas canvas(static_cast<std::size_t>(columns), static_cast<std::size_t>(lines));
    DrawAxes(canvas);
    if (panel_.grid) DrawGrid(canvas, *panel_.grid);
    if (panel_.has_diagonal) DrawDiagonal(canvas);
    for (const TSeries& series : panel_.series) DrawSeries(canvas, series);
    for (const TNote& note : panel_.notes) DrawNote(canvas, note);
    DrawHeads(canvas);
    return canvas;
  }

 private:
  using TTicks = std::vector<std::pair<double, std::u32string>>;

  static TTicks Numbers(const TAxis& axis, int most) {
    TTicks ticks;
    for (const TTick& tick : RoundTicks(axis, static_cast<std::size_t>(std::max(most, 2)))) {
      ticks.emplace_back(tick.at, Characters(tick.text));
    }
    return ticks;
  }

  static TTicks Words(const TAxis& axis, int most) {
    TTicks ticks;
    for (std::size_t i = 0; i < axis.ticks.size(); ++i) {
      ticks.emplace_back(static_cast<double>(i), Short(axis.ticks[i], most));
    }
    return ticks;
  }

  bool HasScale() const { return panel_.grid && !panel_.grid->name.empty(); }

  // Cells of words and counts are a line high; others are about as high as they are wide, which is
  // two columns a line.
  void FitGrid(const TGrid& grid) {
    const int columns = static_cast<int>(grid.columns);
    const int rows = static_cast<int>(grid.rows);
    const bool has_words = !panel_.y.ticks.empty();
    const int widest = grid.name.empty() ? 12 : has_words ? 3 : 4;
    const int cell = std::clamp(width_ / columns, 1, widest);
    width_ = std::min(width_, columns * cell);
    constexpr int kNarrow = 3;  // too narrow for a number and a blank
    shows_notes_ = !grid.name.empty() || cell > kNarrow;
    constexpr double kTallest = 100.0;
    const double high = std::clamp(std::round(0.5 * width_ * rows / columns), 1.0, kTallest);
    height_ = has_words ? rows : static_cast<int>(high);
  }

  int Column(double x) const {
    const int column = static_cast<int>(ShareOf(panel_.x, x) * width_);
    return left_ + 1 + std::clamp(column, 0, width_ - 1);
  }
  double ShareDown(double y) const {
    const double share = ShareOf(panel_.y, y);
    return panel_.is_downwards ? share : 1.0 - share;
  }
  int Line(double y) const {
    return top_ + std::clamp(static_cast<int>(ShareDown(y) * height_), 0, height_ - 1);
  }
  double DotAcross(double x) const {
    return (left_ + 1) * TCanvas::kAcross + ShareOf(panel_.x, x) * (width_ * TCanvas::kAcross - 1);
  }
  int DotDown(double share) const {
    return top_ * TCanvas::kDown +
           static_cast<int>(std::lround(share * (height_ * TCanvas::kDown - 1)));
  }
  double DotOf(double y) const {
    return top_ * TCanvas::kDown + ShareDown(y) * (height_ * TCanvas::kDown - 1);
  }

  void DrawAxes(TCanvas& canvas) const {
    int line = 0;
    if (!panel_.title.empty())
      canvas.Write(left_ + 1, line++, Short(panel_.title, canvas.Columns() - left_ - 1));
    if (!panel_.y.name.empty())
      canvas.Write(left_, line, Short(panel_.y.name, canvas.Columns() - left_));
    const int bottom = top_ + height_;
    for (int l = top_; l < bottom; ++l) canvas.Put(left_, l, U'│');
    for (int c = 0; c < width_; ++c) canvas.Put(left_ + 1 + c, bottom, U'─');
    canvas.Put(left_, bottom, U'└');
    for (const auto& [at, text] : y_ticks_) {
      if (ShareOf(panel_.y, at) < -1e-6 || ShareOf(panel_.y, at) > 1.0 + 1e-6) continue;
      canvas.Write(left_ - Size(text), Line(at), text);
      canvas.Put(left_, Line(at), U'┤');
    }
    DrawXTicks(canvas, bottom);
    const std::u32string name = Short(panel_.x.name, width_);
    if (!panel_.x.name.empty()) {
      canvas.Write(left_ + 1 + (width_ - Size(name)) / 2, bottom + 2, name);
    }
  }

  // Texts that would touch the one before are left out.
  void DrawXTicks(TCanvas& canvas, int bottom) const {
    constexpr int kRoom = 12;  // columns for a number
    if (!panel_.x.ticks.empty()) return DrawWords(canvas, bottom);
    DrawTicks(canvas, bottom, Numbers(panel_.x, width_ / kRoom));
  }

  // Words of which too little would be left are not written.
  void DrawWords(TCanvas& canvas, int bottom) const {
    const int cell = width_ / static_cast<int>(panel_.x.ticks.size());
    constexpr int kLeast = 5;
    const auto is_long = [](const std::string& word) {
      return Size(Characters(word)) > kLeast - 2;
    };
    if (cell < kLeast && std::ranges::any_of(panel_.x.ticks, is_long)) return;
    DrawTicks(canvas, bottom, Words(panel_.x, std::max(cell - 1, kLeast - 2)));
  }

  void DrawTicks(TCanvas& canvas, int bottom, const TTicks& ticks) const {
    int free = 0;
    for (const auto& [at, text] : ticks) {
      const int begin = std::min(Column(at) - Size(text) / 2, left_ + 1 + width_ - Size(text));
      if (text.empty() || begin < free) continue;
      canvas.Write(begin, bottom + 1, text);
      canvas.Put(Column(at), bottom, U'┬');
      free = begin + Size(text) + 1;
    }
  }

  // The mean of the cells that share a character.
  double MeanShade(const TGrid& grid, int column, int line) const {
    const auto part = [](int n, int of, std::size_t all) {
      return static_cast<std::size_t>(n) * all / static_cast<std::size_t>(of);
    };
    double sum = 0.0;
    int count = 0;
    const std::size_t first_row = part(line, height_, grid.rows);
    const std::size_t first_column = part(column, width_, grid.columns);
    const std::size_t end_row = std::max(part(line + 1, height_, grid.rows), first_row + 1);
    const std::size_t end_column =
        std::max(part(column + 1, width_, grid.columns), first_column + 1);
    for (std::size_t row = first_row; row < end_row; ++row) {
      for (std::size_t c = first_column; c < end_column; ++c) {
        const double value = grid.values[row * grid.columns + c];
        if (std::isnan(value)) continue;
        sum += (value - grid.lower) / (grid.upper - grid.lower);
        ++count;
      }
    }
    if (count == 0) return 0.0;
    const double shade = sum / count;
    return grid.shading == TShading::kUpwards ? shade : std::abs(2.0 * shade - 1.0);
  }

  void DrawGrid(TCanvas& canvas, const TGrid& grid) const {
    if (grid.name.empty() && shows_notes_) return;  // which say what shades would
    for (int line = 0; line < height_; ++line) {
      for (int column = 0; column < width_; ++column) {
        const int grid_line = panel_.is_downwards ? line : height_ - 1 - line;
        const double shade = std::clamp(MeanShade(grid, column, grid_line), 0.0, 1.0);
        const auto level = static_cast<std::size_t>(std::lround(shade * (kShades.size() - 1)));
        if (level > 0) canvas.Put(left_ + 1 + column, top_ + line, kShades[level]);
      }
    }
    if (grid.name.empty()) return;
    const double lightest = grid.shading == TShading::kUpwards ? grid.lower : 0.0;
    const std::u32string scale =
        Characters(FormatGeneral(lightest, 3) + " ░▒▓█ " + FormatGeneral(grid.upper, 3));
    const std::u32string name = Short(grid.name, canvas.Columns() - left_ - 2 - Size(scale));
    canvas.Write(left_ + 1, Lines() - 1, name);
    canvas.Write(left_ + 2 + Size(name), Lines() - 1, scale);
  }

  // Every second dot.
  void DrawDiagonal(TCanvas& canvas) const {
    const int dots = width_ * TCanvas::kAcross;
    for (int dot = 0; dot < dots; dot += 2) {
      canvas.PutDot((left_ + 1) * TCanvas::kAcross + dot, DotDown(1.0 - 1.0 * dot / dots));
    }
  }

  void DrawSeries(TCanvas& canvas, const TSeries& series) const {
    if (series.stroke == TStroke::kArea) return DrawArea(canvas, series);
    if (series.stroke == TStroke::kPoints) {
      for (const TPoint& point : series.points) DrawPoint(canvas, series, point);
      return;
    }
    for (std::size_t i = 0; i + 1 < series.points.size(); ++i) {
      const TPoint& from = series.points[i];
      const TPoint& to = series.points[i + 1];
      if (IsOfDots(series)) {
        canvas.DrawLine(DotAcross(from.x), DotOf(from.y), DotAcross(to.x), DotOf(to.y));
      } else {
        DrawMarks(canvas, series, from, to);
      }
    }
  }

  void DrawPoint(TCanvas& canvas, const TSeries& series, const TPoint& point) const {
    if (IsOfDots(series)) {
      canvas.PutDot(static_cast<int>(DotAcross(point.x)), static_cast<int>(DotOf(point.y)));
    } else {
      canvas.Put(Column(point.x), Line(point.y), MarkOf(series.look));
    }
  }

  // A mark in every second column.
  void DrawMarks(TCanvas& canvas, const TSeries& series, const TPoint& from,
                 const TPoint& to) const {
    const int first = Column(from.x);
    const int last = Column(to.x);
    for (int column = first; column <= last; ++column) {
      if (column % 2 != 0) continue;
      const double share =
          last == first ? 0.0 : static_cast<double>(column - first) / (last - first);
      const double down = ShareDown(from.y) + share * (ShareDown(to.y) - ShareDown(from.y));
      const int line = top_ + std::clamp(static_cast<int>(down * height_), 0, height_ - 1);
      canvas.Put(column, line, MarkOf(series.look));
    }
  }

  // Columns of dots from 0 up to the line.
  void DrawArea(TCanvas& canvas, const TSeries& series) const {
    for (std::size_t i = 0; i + 1 < series.points.size(); ++i) {
      const double begin = DotAcross(series.points[i].x);
      const double end = DotAcross(series.points[i + 1].x);
      for (int x = static_cast<int>(begin); x < static_cast<int>(end); ++x) {
        if (series.points[i].y > panel_.y.lower) {
          canvas.DrawLine(x, DotOf(series.points[i].y), x, DotOf(panel_.y.lower));
        }
      }
    }
  }

  void DrawNote(TCanvas& canvas, const TNote& note) const {
    if (!shows_notes_) return;
    const int room = static_cast<int>(width_ / (panel_.x.upper - panel_.x.lower));
    const std::u32string text = Short(note.text, std::max(room - 1, 1));
    if (room < 1 || height_ / (panel_.y.upper - panel_.y.lower) < 0.99) return;
    const int middle =
        static_cast<int>(std::lround(ShareOf(panel_.x, note.x) * width_ - 0.5 * Size(text)));
    canvas.Write(left_ + 1 + std::max(middle, 0), Line(note.y), text);
  }

  void DrawHeads(TCanvas& canvas) const {
    for (const THead& head : panel_.heads) {
      for (int line = top_; head.has_line && line < top_ + height_; ++line) {
        if (canvas.IsEmpty(Column(head.x), line)) canvas.Put(Column(head.x), line, U'┊');
      }
    }
    for (const TPlacedHead& head : heads_) {
      const std::u32string text = Characters(head.text);
      const int begin = static_cast<int>(std::lround(head.middle - 0.5 * Size(text)));
      canvas.Write(left_ + 1 + std::max(begin, 0), top_ - 1 - static_cast<int>(head.row), text);
    }
  }

  const TPanel& panel_;
  TTicks y_ticks_;
  int left_ = 0;   // the column of the y axis
  int top_ = 0;    // the line of the upper end of it
  int width_ = 0;  // of what stands within the axes
  int height_ = 0;
  bool shows_notes_ = true;
  std::vector<TPlacedHead> heads_;
};

// Where the lines of a key begin.
constexpr int kKeyIndent = 2;

// The lines of a key: the names of series behind their marks.
std::vector<std::u32string> KeyLines(const TPanel& panel, int columns) {
  std::vector<std::u32string> lines;
  for (const TSeries& series : panel.series) {
    if (series.name.empty()) continue;
    std::u32string entry = U"⠤⠤";
    if (!IsOfDots(series)) entry = MarkOf(series.look);
    entry += U' ';
    entry += Short(series.name, static_cast<int>(kLongestName));
    constexpr std::u32string_view kBetween = U"   ";
    if (lines.empty() || kKeyIndent + Size(lines.back()) + Size(kBetween) + Size(entry) > columns) {
      lines.push_back(std::move(entry));
    } else {
      lines.back().append(kBetween).append(entry);
    }
  }
  return lines;
}

int LinesFor(std::size_t panels, int columns) {
  if (panels == 1) return std::clamp(columns / 5, 8, 24);
  return panels == 2 ? 10 : 7;
}

TCanvas DrawPanels(const TPicture& picture, int columns) {
  constexpr int kNarrowest = 26;
  constexpr int kGap = 2;
  const std::size_t panels = picture.panels.size();
  const auto most = static_cast<std::size_t>(std::max(columns / kNarrowest, 1));
  const std::size_t across = picture.is_stacked ? 1 : std::min(PanelsAcross(panels), most);
  const int each = (columns + kGap) / static_cast<int>(across) - kGap;
  std::vector<TTextPanel> drawn;
  int lines = 0;
  for (const TPanel& panel : picture.panels) {
    drawn.emplace_back(panel, each, LinesFor(panels, columns));
    lines = std::max(lines, drawn.back().Lines());
  }
  const std::size_t rows = (panels + across - 1) / across;
  TCanvas canvas(static_cast<std::size_t>(columns), rows * static_cast<std::size_t>(lines + 1) - 1);
  for (std::size_t i = 0; i < panels; ++i) {
    canvas.Place(static_cast<int>(i % across) * (each + kGap),
                 static_cast<int>(i / across) * (lines + 1), drawn[i].Draw(each, lines));
  }
  return canvas;
}

}  // namespace

std::string DrawText(const TPicture& picture, std::size_t columns, TCharacters characters) {
  constexpr std::size_t kNarrowest = 40;
  constexpr std::size_t kWidest = 400;
  columns = std::clamp(columns, kNarrowest, kWidest);
  const TCanvas panels = DrawPanels(picture, static_cast<int>(columns));
  const auto key = KeyLines(picture.panels.front(), static_cast<int>(columns));
  TCanvas sheet(columns, static_cast<std::size_t>(panels.Lines()) + 2 + key.size());
  sheet.Write(0, 0, Short(picture.title, static_cast<int>(columns)));
  sheet.Place(0, 2, panels);
  int line = 2 + panels.Lines();
  for (const std::u32string& entry : key) sheet.Write(kKeyIndent, line++, entry);
  return sheet.Text(characters);
}

std::string DrawCurve(const TPanel& panel, std::size_t columns, std::size_t lines,
                      TCharacters characters) {
  constexpr int kAxis = 2;
  TTextPanel drawn(panel, static_cast<int>(columns), static_cast<int>(lines) - kAxis);
  return drawn.Draw(static_cast<int>(columns), static_cast<int>(lines)).Text(characters);
}

}  // namespace kiln
