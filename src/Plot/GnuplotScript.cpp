#include "Plot/GnuplotScript.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "Plot/AxisTicks.h"
#include "Plot/Legible.h"
#include "Plot/PanelLayout.h"
#include "Shared/NumberFormat.h"

namespace kiln {

namespace {

constexpr std::size_t kLongestTitle = 200;
constexpr char kInk[] = "'#303030'";
constexpr char kFaint[] = "'#b0b0b0'";

// Colours that people of any colour vision tell apart (Okabe and Ito), those first that differ most
// in grey.
constexpr std::array kColours = {"'#0072b2'", "'#d55e00'", "'#009e73'", "'#cc79a7'",
                                 "'#e69f00'", "'#56b4e9'", "'#404040'"};
// Numbers of gnuplot's points: disc, triangle, cross, square, diamond, plus, circle.
constexpr std::array kShapes = {7, 9, 2, 5, 13, 1, 6};
constexpr std::array kDashes = {"1", "(8,5)", "(10,4,2,4)", "(2,4)", "(16,5)"};

constexpr char kUpwards[] =
    "(0 '#ffffff', 0.25 '#c6dbef', 0.5 '#6baed6', 0.75 '#2171b5', 1 '#08306b')";
constexpr char kGreys[] = "(0 '#ffffff', 1 '#505050')";
constexpr char kBothWays[] =
    "(-1 '#7f3b08', -0.5 '#e08214', 0 '#ffffff', 0.5 '#4393c3', 1 '#053061')";

// A text as an expression, shortened to `most` characters. Within single quotes nothing but a quote
// has a meaning, and a quote stands within double ones. (Doubled it would do, but not everywhere.)
std::string Quoted(std::string_view text, std::size_t most) {
  std::string quoted = "'";
  for (const char c : Legible(text, most)) {
    if (c == '\'') quoted += R"('."'".)";
    quoted += c;
  }
  return quoted += '\'';
}

// The same for a tick, which is a pattern for a number: "%%" stands for "%" in it.
std::string QuotedTick(std::string_view text) {
  std::string quoted;
  for (const char c : Quoted(text, kLongestTick)) quoted.append(c == '%' ? 2 : 1, c);
  return quoted;
}

// A value on an axis; on a narrow axis far from 0 values differ in late digits alone.
std::string Number(double value) {
  constexpr int kDigits = 15;
  return FormatGeneral(value, kDigits);
}

// A share of the picture's width or height.
std::string Share(double value) {
  constexpr int kDigits = 7;
  return FormatGeneral(value, kDigits);
}

std::string Range(const TAxis& axis, bool is_downwards = false) {
  const auto& [first, last] =
      is_downwards ? std::pair(axis.upper, axis.lower) : std::pair(axis.lower, axis.upper);
  return std::string("[").append(Number(first)).append(":").append(Number(last)).append("]");
}

class TScript {
 public:
  TScript(const TPicture& picture, TPictureFormat format)
      : picture_(picture), layout_(LayOut(picture)), format_(format) {}

  std::string Write() {
    Add("# Written by Kiln. gnuplot FILE.gp > FILE.svg draws it; the next line says as what.");
    WriteTerminal();
    for (std::size_t i = 0; i < picture_.panels.size(); ++i) WriteData(i);
    Add("set encoding utf8");
    Add("set multiplot");
    for (std::size_t i = 0; i < picture_.panels.size(); ++i) {
      WritePanel(picture_.panels[i], layout_.panels[i], i);
    }
    Add("unset multiplot");
    return std::move(text_);
  }

 private:
  template <typename... TParts>
  void Add(const TParts&... parts) {
    (text_.append(parts), ...);
    text_ += '\n';
  }

  void WriteTerminal() {
    const auto size = [&](double scale, int decimals) {
      return " size " + FormatFixed(std::ceil(layout_.width) * scale, decimals) + "," +
             FormatFixed(std::ceil(layout_.height) * scale, decimals) + " noenhanced";
    };
    constexpr double kInch = 1.0 / 72.0;
    switch (format_) {
      case TPictureFormat::kSvg:
        return Add("set terminal svg", size(1.0, 0), " font 'sans-serif,13' background '#ffffff'");
      case TPictureFormat::kPng:
        return Add("set terminal pngcairo", size(2.0, 0),
                   " font 'Sans,13' fontscale 1.65 linewidth 2", " pointscale 2");
      case TPictureFormat::kPdf:
        return Add("set terminal pdfcairo", size(kInch, 4),
                   " font 'Sans,13' fontscale 0.85 linewidth 1.5");
    }
  }

  // --- Data --------------------------------------------------------------------------------

  static std::string Block(std::size_t panel, std::size_t series) {
    return "$Points_" + std::to_string(panel + 1) + "_" + std::to_string(series + 1);
  }
  static std::string Block(std::size_t panel) { return "$Cells_" + std::to_string(panel + 1); }

  void WriteData(std::size_t number) {
    const TPanel& panel = picture_.panels[number];
    if (panel.grid) WriteCells(Block(number), *panel.grid);
    for (std::size_t i = 0; i < panel.series.size(); ++i) {
      Add(Block(number, i), " << EOD");
      for (const TPoint& point : panel.series[i].points) {
        Add(Number(point.x), " ", Number(point.y));
      }
      Add("EOD");
    }
  }

  // gnuplot draws no image of less than two rows or columns: a single one is written twice, each
  // for half a cell.
  void WriteCells(const std::string& block, const TGrid& grid) {
    Add(block, " << EOD");
    for (std::size_t row = 0; row < grid.rows; ++row) {
      for (int again = 0; again < (grid.rows == 1 ? 2 : 1); ++again) WriteRow(grid, row);
    }
    Add("EOD");
  }

  void WriteRow(const TGrid& grid, std::size_t row) {
    constexpr int kDigits = 4;  // no shade needs more
    for (std::size_t column = 0; column < grid.columns; ++column) {
      // Of cells without a value gnuplot would complain.
      const double value = grid.values[row * grid.columns + column];
      const double nothing = grid.shading == TShading::kUpwards ? grid.lower : 0.0;
      const std::string text = FormatGeneral(std::isfinite(value) ? value : nothing, kDigits);
      text_.append(column > 0 ? " " : "").append(text);
      if (grid.columns == 1) text_.append(" ").append(text);
    }
    text_ += '\n';
  }

  // Where the middle of a cell stands, by the number of its row or column.
  static std::string CellPlace(const char* number, std::size_t cells, double step) {
    if (cells == 1)
      return std::string("((").append(number).append("-0.5)*").append(Number(step / 2)).append(")");
    return std::string("(").append(number).append("*").append(Number(step)).append(")");
  }

  // --- Panels ------------------------------------------------------------------------------

  double Across(double x) const { return x / layout_.width; }
  double Up(double y) const { return 1.0 - y / layout_.height; }
  std::string At(double x, double y) const {
    return " at screen " + Share(Across(x)) + ", screen " + Share(Up(y));
  }

  void WritePanel(const TPanel& panel, const TPanelPlace& place, std::size_t number) {
    Add("reset");
    if (number == 0) {
      Add("set label ", Quoted(picture_.title, TitleRoom()), At(12.0, 20.0), " left font '",
          Family(), " Bold,15' textcolor rgb ", kInk);
    }
    Add("set lmargin at screen ", Share(Across(place.left)));
    Add("set rmargin at screen ", Share(Across(place.left + place.width)));
    Add("set tmargin at screen ", Share(Up(place.top)));
    Add("set bmargin at screen ", Share(Up(place.top + place.height)));
    WriteAxes(panel, place);
    WriteTexts(panel, place);
    WriteKey(panel, place);
    if (panel.grid) WriteShades(*panel.grid, ShadesOf(panel), place);
    WritePlot(panel, number);
  }

  const char* Family() const { return format_ == TPictureFormat::kSvg ? "sans-serif" : "Sans"; }

  // As many characters as the picture is wide.
  std::size_t TitleRoom() const {
    const double room = (layout_.width - 24.0) / kTitleLetterWidth;
    return std::min(static_cast<std::size_t>(room), kLongestTitle);
  }

  void WriteAxes(const TPanel& panel, const TPanelPlace& place) {
    // A grid has a frame, curves have two axes.
    Add("set border ", panel.grid ? "15" : "3", " linewidth 0.8 linecolor rgb ", kInk);
    Add("set tics out nomirror scale 0.4 font ',12' textcolor rgb ", kInk);
    Add("set format '%.10g'");
    Add("set xrange ", Range(panel.x));
    Add("set yrange ", Range(panel.y, panel.is_downwards));
    if (panel.x.is_logarithmic) Add("set logscale x");
    if (panel.y.is_logarithmic) Add("set logscale y");
    if (!panel.grid) Add("set grid ytics linetype 1 linewidth 0.5 linecolor rgb '#e4e4e4'");
    constexpr double kHigh = 42.0;  // from number to number
    const double wide = NumberWidth(panel.x) + 26.0;
    WriteTicks("x", panel.x, place.width / wide, place.turns_ticks ? " rotate by 90 right" : "");
    WriteTicks("y", panel.y, place.height / kHigh, "");
    const double middle = place.top + place.height / 2;
    if (!panel.x.name.empty()) {
      AddLabel(Quoted(panel.x.name, Room(place.width)),
               At(place.left + place.width / 2, place.top + place.height + place.below + 25.0),
               "center");
    }
    if (!panel.y.name.empty()) {
      AddLabel(Quoted(panel.y.name, Room(place.height)),
               At(place.left - place.beside - 24.0, middle), "center rotate by 90");
    }
  }

  static std::size_t Room(double length) {
    constexpr double kLeast = 4.0;
    return static_cast<std::size_t>(std::max((length + 40.0) / kLetterWidth, kLeast));
  }

  void WriteTicks(const char* axis, const TAxis& of, double room, const char* manner) {
    const auto most = static_cast<std::size_t>(room);
    if (of.ticks.empty() && of.is_logarithmic) return WriteNumbers(axis, RoundTicks(of, most));
    if (of.ticks.empty()) return Add("set ", axis, "tics ", Number(TickStep(of, most)));
    text_.append("set ").append(axis).append("tics scale 0").append(manner).append(" (");
    for (std::size_t i = 0; i < of.ticks.size(); ++i) {
      if (i > 0) text_ += ", ";
      text_.append(QuotedTick(of.ticks[i])).append(" ").append(std::to_string(i));
    }
    Add(")");
  }

  void WriteNumbers(const char* axis, const std::vector<TTick>& ticks) {
    text_.append("set ").append(axis).append("tics (");
    const char* between = "";
    for (const TTick& tick : ticks) {
      text_.append(between).append("'").append(tick.text).append("' ").append(Number(tick.at));
      between = ", ";
    }
    Add(")");
  }

  void AddLabel(const std::string& text, const std::string& place, const std::string& manner) {
    Add("set label ", text, place, " ", manner, " front textcolor rgb ", kInk);
  }

  void WriteTexts(const TPanel& panel, const TPanelPlace& place) {
    for (const TPlacedHead& head : place.heads) {
      AddLabel(Quoted(head.text, head.text.size() + 1),
               At(place.left + head.middle,
                  place.top - 11.0 - static_cast<double>(head.row) * kLineHeight),
               "center font ',12'");
    }
    if (!panel.title.empty()) {
      AddLabel(Quoted(panel.title, Room(place.width)),
               At(place.left, place.top - place.title_above), "left");
    }
    for (const THead& head : panel.heads) {
      if (!head.has_line) continue;
      Add("set arrow from first ", Number(head.x), ", graph 0 to first ", Number(head.x),
          ", graph 1 nohead dashtype 3 linewidth 1.2 linecolor rgb ", kInk);
    }
    for (const double y : panel.rules) {
      Add("set arrow from graph 0, first ", Number(y), " to graph 1, first ", Number(y),
          " nohead front linewidth 0.8 linecolor rgb ", kInk);
    }
    if (panel.has_diagonal) {
      Add("set arrow from graph 0, graph 0 to graph 1, graph 1 nohead back linewidth 1 ",
          "linecolor rgb ", kFaint);
    }
    WriteNotes(panel, place);
  }

  // Notes stand in cells, and are left out where cells are too small for any text.
  void WriteNotes(const TPanel& panel, const TPanelPlace& place) {
    const double room = 0.9 * place.width / (panel.x.upper - panel.x.lower);
    const auto most = static_cast<std::size_t>(room / kLetterWidth);
    if (most == 0 || place.height / (panel.y.upper - panel.y.lower) < kLineHeight - 4.0) return;
    for (const TNote& note : panel.notes) {
      constexpr double kDark = 0.7;  // from where white is easier to read than black
      const bool is_dark = Darkness(*panel.grid, note.x, note.y) > kDark;
      Add("set label ", Quoted(note.text, most), " at first ", Number(note.x), ", first ",
          Number(note.y), " center front font ',12' textcolor rgb ",
          is_dark ? "'#ffffff'" : "'#000000'");
    }
  }

  // Of the cell in which the place is, from 0 to 1.
  static double Darkness(const TGrid& grid, double x, double y) {
    const auto column = static_cast<std::size_t>(std::lround(x / grid.step));
    const auto row = static_cast<std::size_t>(std::lround(y / grid.step));
    const double value = grid.values[row * grid.columns + column];
    const double shade = (value - grid.lower) / (grid.upper - grid.lower);
    return grid.shading == TShading::kUpwards ? shade : std::abs(2.0 * shade - 1.0);
  }

  void WriteKey(const TPanel& panel, const TPanelPlace& place) {
    Add("set key font ',12' textcolor rgb ", kInk);
    if (place.has_key_beside) {
      Add("set key", At(place.left + place.width + ScaleWidth(panel) + 12.0, place.top),
          " left top vertical Left reverse samplen 1.5 spacing 1");
    } else {
      Add("set key", At(place.left + place.width, place.top - place.heads_height - 4.0),
          " right bottom horizontal Left reverse samplen 2");
    }
  }

  // Beneath coloured points shades are grey.
  static const char* ShadesOf(const TPanel& panel) {
    if (panel.grid->shading == TShading::kBothWays) return kBothWays;
    return panel.series.empty() ? kUpwards : kGreys;
  }

  void WriteShades(const TGrid& grid, const char* shades, const TPanelPlace& place) {
    Add("set palette defined ", shades);
    Add("set cbrange [", Number(grid.lower), ":", Number(grid.upper), "]");
    if (grid.name.empty()) return Add("unset colorbox");
    const double height = std::min(place.height, 200.0);
    Add("set colorbox user origin ", Share(Across(place.left + place.width + 12.0)), ", ",
        Share(Up(place.top + place.height)), " size ", Share(Across(10.0)), ", ",
        Share(height / layout_.height), " noborder");
    constexpr double kHigh = 32.0;  // from number to number
    const TAxis scale = {"", grid.lower, grid.upper, false, {}};
    Add("set cbtics ", Number(TickStep(scale, static_cast<std::size_t>(height / kHigh))),
        " scale 0 font ',11' offset -0.6,0");
    AddLabel(Quoted(grid.name, kLongestTick),
             At(place.left + place.width + 8.0, place.top + place.height + 16.0),
             "left font ',11'");
  }

  // --- Plotting ----------------------------------------------------------------------------

  void WritePlot(const TPanel& panel, std::size_t number) {
    text_ += "plot ";
    const char* between = "";
    if (panel.grid) {
      const TGrid& grid = *panel.grid;
      // Rectangles are sharp in every viewer; beyond some thousands files would grow large.
      constexpr std::size_t kManyCells = 20000;
      const bool is_small = format_ != TPictureFormat::kPng && grid.values.size() <= kManyCells;
      text_.append(Block(number)).append(" matrix using ");
      text_.append(CellPlace("$1", grid.columns, grid.step)).append(":");
      text_.append(CellPlace("$2", grid.rows, grid.step)).append(":3 with image");
      if (is_small) text_ += " pixels";
      text_ += " notitle";
      between = ", \\\n  ";
    }
    for (std::size_t i = 0; i < panel.series.size(); ++i) {
      if (panel.series[i].points.empty()) continue;  // of which gnuplot would complain
      text_ += between;
      if (panel.grid) WriteRim(panel.series[i], Block(number, i));
      WriteSeries(panel.series[i], Block(number, i));
      between = ", \\\n  ";
    }
    if (!*between) text_ += "NaN notitle";
    text_ += '\n';
  }

  // Points on shades have a white rim.
  void WriteRim(const TSeries& series, const std::string& block) {
    text_.append(block).append(" using 1:2 with points pointtype ");
    text_.append(std::to_string(Shape(series.look))).append(" pointsize 1.3 linewidth 4 ");
    text_ += "linecolor rgb '#ffffff' notitle, \\\n  ";
  }

  void WriteSeries(const TSeries& series, const std::string& block) {
    const std::string colour =
        std::string(" linecolor rgb ") + kColours[series.look % kColours.size()];
    std::string title = " notitle";
    if (!series.name.empty()) title = " title " + Quoted(series.name, kLongestName);
    text_.append(block).append(" using 1:2");
    switch (series.stroke) {
      case TStroke::kPoints:
        text_.append(" with points linewidth 1.6 pointtype ");
        text_.append(std::to_string(Shape(series.look))).append(" pointsize ");
        text_ += PointSize(series.points.size());
        break;
      case TStroke::kArea:
        text_.append(" with filledcurves y1=0 fillcolor rgb ");
        text_.append(kColours[series.look % kColours.size()]).append(" fillstyle solid 0.35");
        text_.append(" border").append(colour).append(title);
        return;
      case TStroke::kLine:
        text_ += " with lines linewidth 1.8 dashtype ";
        text_ += series.name.empty() ? kDashes.front() : kDashes[series.look % kDashes.size()];
        break;
    }
    text_.append(colour).append(title);
  }

  // Another shape with each colour, and with the next round of colours other pairs.
  static int Shape(std::size_t look) {
    return kShapes[(look + look / kColours.size()) % kShapes.size()];
  }

  static const char* PointSize(std::size_t points) {
    if (points > 2000) return "0.3";
    return points > 300 ? "0.5" : "0.75";
  }

  const TPicture& picture_;
  const TPictureLayout layout_;
  const TPictureFormat format_;
  std::string text_;
};

}  // namespace

std::string GnuplotScript(const TPicture& picture, TPictureFormat format) {
  return TScript(picture, format).Write();
}

}  // namespace kiln
