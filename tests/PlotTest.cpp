#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FileTestTools.h"
#include "Interpreter/TInterpreter.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "Plot/DataPicture.h"
#include "Plot/GnuplotScript.h"
#include "Plot/HistoryPicture.h"
#include "Plot/Legible.h"
#include "Plot/MapPicture.h"
#include "Plot/TCanvas.h"
#include "Plot/TextPicture.h"

namespace kiln {
namespace {

// Commands in an empty folder, and the scripts of what they plot.
class Plot : public testing::Test {
 protected:
  Plot() {
    std::filesystem::create_directories(folder_);
    for (const char* line :
         {"create Data alias d inputs 2 outputs 1 rows 4 labels on",
          "append alias d inputs {0.125, 0.5} outputs {1} labels {up}",
          "append alias d inputs {0.25, 2.5} outputs {0} labels {down}",
          "append alias d inputs {0.75, 1} outputs {1} labels {up}",
          "create MLP alias net inputs 2 layers 3 hidden {2} outputs 1 bias on seed 1",
          "create BPTrainer alias teacher network net",
          "create Tarn alias fuzzy inputs 2 condition {2, 3} rules 3 outputs 1 action {2} seed 1",
          "create Kohonen alias k inputs 2 dimensions 2 mapdim {2, 3} seed 1"}) {
      Do(line);
    }
  }
  ~Plot() override { std::filesystem::remove_all(folder_); }

  void Do(const std::string& line) {
    ASSERT_GE(interpreter_.Execute(line), 0) << line << ": " << interpreter_.GetError();
  }

  std::string Path(const std::string& name) const { return folder_ + "/" + name; }

  std::string ScriptOf(const std::string& what) {
    Do("plot " + what + " filename (" + Path("x.gp") + ")");
    return Contents(Path("x.gp"));
  }

  std::string TextOf(const std::string& what) {
    Do("plot " + what + " filename (" + Path("x.txt") + ")");
    return Contents(Path("x.txt"));
  }

  TInterpreter interpreter_;
  const std::string folder_ = ScratchPath();
};

// How many columns the widest line takes.
std::size_t Width(const std::string& text) {
  std::istringstream lines(text);
  std::size_t width = 0;
  for (std::string line; std::getline(lines, line);) {
    width = std::max(width, WidthOf(Characters(line)));
  }
  return width;
}

TEST_F(Plot, WritesEachKindAsAScript) {
  Do("train alias teacher data d epochs 3 validation d");
  Do("create GATrainer alias breeder network net minweight -1 maxweight 1 population 5");
  Do("train alias breeder data d generations 2 seed 1");
  Do("labeltarn network fuzzy labels words terms {low, high}");
  Do("retarn network fuzzy labels words rules found");
  Do("create Data alias e inputs 1 outputs 1 rows 3 labels on");
  for (const char* row : {"{2} outputs {7.5}", "{3} outputs {6.5}", "{3} outputs {nan}"}) {
    Do(std::string("append alias e inputs ") + row);
  }
  Do("create Data alias far inputs 3 outputs 0 rows 2 labels off");
  Do("append alias far inputs {1700000000, 1e300, 1.7e308}");
  Do("append alias far inputs {1700000100, 1e300, -1.7e308}");
  Do("create MLP alias line inputs 1 layers 2 hidden {} outputs 1 bias on functions {linear}");
  const struct {
    std::string what;
    std::vector<std::string> pieces;
  } kinds[] = {
      {"teacher",
       {"'Errors of teacher'", "'epoch'", "'error'", "title 'training'", "title 'validation'",
        "'kept: epoch 3'", "from first 3, graph 0", "set xrange [1:3]", "$Points_1_2 << EOD\n1 "}},
      {"breeder", {"'generation'", "title 'best'", "title 'average'"}},
      {"d columns {1, output0}",
       {"'input1'", "'output0'", "0.5 1\n1 1\nEOD", "2.5 0\nEOD", "title 'up'", "title 'down'",
        "set xrange [0.42:2.58]", "pointtype 7", "pointtype 9"}},
      {"d columns {0}",
       {"'rows'", "'input0'", "0.125 0\n0.125 1\n", "'down'", "filledcurves y1=0"}},
      {"e", {"'e'", "$Points_1_1 << EOD\n2 7.5\n3 6.5\nEOD\n", "notitle"}},
      {"e columns {1}", {"\n6.7 1\n", "'output0'"}},
      {"far", {"set xrange [1699999996:1700000104]", "\n1700000100 1e+300\n"}},
      {"far columns {1}", {"set xrange [1e+300:1.005e+300]"}},
      {"far columns {2}", {"set xrange [-1e+300:1e+300]"}},
      {"net data d",
       {"'net on d: ", " of 3 right'", "'expected'", "'answered'", "'output0 0' 0, 'output0 1' 1",
        "set yrange [1.5:-0.5]"}},
      {"line data e", {"'line on e: error ", "$Points_1_1 << EOD\n7.5 ", "from graph 0, graph 0"}},
      {"fuzzy labels words",
       {"'Terms of fuzzy'", "'InputA'", "'low'", "'high'", "'OutputA'", "$Points_1_1 << EOD\n0 1\n",
        "1 0\nEOD", "$Points_3_2"}},
      {"found method rules",
       {"'Rules of found'", "'rule'", "'degree'", "('1' 0, '2' 1", "InputB C"}},
      {"k data d",
       {"'Distances on k'", "'distance'", "matrix using ($1*0.5):($2*0.5):3", "'up' at first",
        "set xrange [-0.25:2.25]"}},
      {"k columns {1, 0}", {"'Components of k'", "'input1'", "'input0'", "'value'", "$Cells_2"}},
  };
  for (const auto& [what, pieces] : kinds) {
    const std::string script = ScriptOf(what);
    for (const std::string& piece : pieces) {
      EXPECT_NE(script.find(piece), script.npos) << what << ": " << piece << '\n' << script;
    }
  }
}

// "{first, rest, rest, ...}", so many values.
std::string List(int size, const std::string& first, const std::string& rest) {
  std::string list = "{" + first;
  for (int i = 1; i < size; ++i) list += ", " + rest;
  return list + "}";
}

const std::string kTerms = Contents(KILN_TEST_DATA "/every-kind.mflist");

TEST_F(Plot, DrawsTheManyTheFewAndTheOdd) {
  std::ofstream kinds(Path("kinds.csv"));
  kinds << "幅,Size,Kind=a,Kind=b,Kind\n7,0.25,1,0,a rather long name\n";
  for (int n = 0; n < 5000; ++n) {
    kinds << n % 50 << ",0.5," << n % 2 << ',' << 1 - n % 2 << ",species no. " << n % 21 << '\n';
  }
  kinds.close();
  const std::string lines[] = {
      "train alias teacher data d epochs 30 validation d",
      "load CSV alias kinds filename (" + Path("kinds.csv") + ") labels {Kind} outputs {2, 3}",
      "load CSV alias plain filename (" + Path("kinds.csv") + ") ignore {Kind} outputs {2, 3}",
      "append alias kinds inputs {30, 0.25}",
      "create Kohonen alias row inputs 1 dimensions 1 mapdim {12} seed 1",
      "create Kohonen alias column inputs 2 dimensions 2 mapdim {12, 1} seed 1",
      "create Kohonen alias cube inputs 2 dimensions 3 mapdim {40, 2, 2} seed 1",
      "create Kohonen alias long inputs 37 dimensions 2 mapdim {12, 12} seed 1",
      "create Data alias twelve inputs 37 outputs 12 rows 2 labels off",
      "create Data alias forty inputs 37 outputs 40 rows 2 labels off",
      "append alias twelve inputs " + List(37, "0", "1") + " outputs " + List(12, "1", "0"),
      "append alias twelve inputs " + List(37, "1", "0") + " outputs " + List(12, "1", "0"),
      "append alias forty inputs " + List(37, "0", "1") + " outputs " + List(40, "nan", "0.5"),
      "append alias forty inputs " + List(37, "1", "0") + " outputs " + List(40, "nan", "2"),
      "create MLP alias many inputs 37 layers 2 hidden {} outputs 40 bias on seed 1",
      "create MLP alias some inputs 37 layers 2 hidden {} outputs 12 bias on seed 1",
      "load FuzzyRules alias sailing filename (" KILN_TEST_DATA "/sailing.rules)"};
  for (const std::string& line : lines) Do(line);
  std::ofstream rules(Path("kinds.rules"));
  rules << "[FormatVersion=1.0] [FuzzyRules] [RuleType=x]\n" << kTerms << kTerms << "[RuleList]\n";
  for (int n = 0; n < 130; ++n) rules << "if <Wind is low> then <Wind is high 0.5>\n";
  rules << "[~RuleList] [~FuzzyRules]";
  rules.close();
  Do("load FuzzyRules alias kinds_of_terms filename (" + Path("kinds.rules") + ")");
  std::string inputs = "{0";
  for (int i = 1; i < 37; ++i) inputs += ", " + std::to_string(i);
  const struct {
    std::string what;
    std::vector<std::string> script, text;
  } cases[] = {
      {"kinds", {"'kinds, one in 2 of 5001 rows'", "title 'others'"}, {"c others", "幅"}},
      {"kinds columns {Size}", {"'kinds: Size'", "'others'"}, {"species no. 13", "others"}},
      {"plain columns {1, 3}", {"title 'a'", "'Kind=b'"}, {"o a   x b"}},
      {"row", {"($2-0.5)*0.25"}, {" ┤", "distance"}},
      {"row columns {0}", {"'Components of row'"}, {"input0", "value"}},
      {"column columns {1}", {"(($1-0.5)*0.5)"}, {"input1\n", "10┤"}},
      {"cube data plain",
       {"'Distances on cube, first 36 of 40 planes'", "'35, *, *'", "'a' at first"},
       {"35, *, *", " ░▒▓█ 1."}},
      {"long columns " + inputs + "}",
       {"'Components of long, first 36 of 37 inputs'", "'input35'"},
       {"input35"}},
      {"long data twelve", {"title 'output0'"}, {"░▒▓█"}},
      {"some data twelve", {" of 2 right'", "'output11' 11"}, {" output11┤", "answered"}},
      {"many data forty",
       {", first 36 of 40 outputs'", "'output35'", "plot NaN notitle"},
       {"output35"}},
      {"sailing",
       {"'Wind'", "'Reefed'", "set xrange [-1:9]", "\n0.25 1\n"},
       {"Light  1        Gale", "Calm"}},
      {"sailing method rules", {"'Sea ?'", "'−'"}, {"   Wind Gale┤   ███", "       Sea ?┤ −"}},
      {"kinds_of_terms", {"'exact'", "set xrange [-0.25:1]"}, {"low", "high"}},
      {"kinds_of_terms method rules",
       {"'Rules of kinds_of_terms, first 120 of 130'", "'5' 4, '' 5"},
       {"Wind high┤"}},
      {"k data kinds", {}, {"specie…"}},
      {"d columns {0}", {}, {" down", "⣿⣿"}},
      {"teacher", {"title 'validation'"}, {" x x x", "⠤⠤ training   x validation"}},
      {"net data d", {}, {"output0 1┤", "expected"}},
      {"fuzzy", {}, {"InputA", "OutputA"}},
      {"k data d", {}, {"up", "distance"}},
  };
  for (const auto& [what, script, text] : cases) {
    const std::string drawn[] = {ScriptOf(what), TextOf(what)};
    for (const std::string& piece : script) {
      EXPECT_NE(drawn[0].find(piece), std::string::npos) << what << ": " << piece;
    }
    for (const std::string& piece : text) {
      EXPECT_NE(drawn[1].find(piece), std::string::npos) << what << ": " << piece << '\n'
                                                         << drawn[1];
    }
    EXPECT_LE(Width(drawn[1]), 80U) << drawn[1];
  }
}

constexpr char kNoVariables[] =
    "[MFList] [MFListInfo] [VariablesRepresented=0] [~MFListInfo] [~MFList]";

TEST_F(Plot, RefusesWhatCannotBeDrawn) {
  Do("create Data alias empty inputs 2 outputs 1 rows 4 labels off");
  Do("append alias empty inputs {1, nan} outputs {0.5}");
  Do("labeltarn network fuzzy labels words");
  Do("create Kohonen alias one inputs 2 dimensions 1 mapdim {1} seed 1");
  Do("create Kohonen alias cube inputs 2 dimensions 3 mapdim {2, 2, 2} seed 1");
  Do("create Data alias nothing inputs 0 outputs 0 rows 1 labels off");
  Do("create MLP alias classifier inputs 1 layers 2 hidden {} outputs 61 bias on seed 1");
  Do("create Data alias classes inputs 1 outputs 61 rows 2 labels off");
  for (int n = 0; n < 2; ++n) {
    Do("append alias classes inputs {1} outputs " + List(61, "1", "0"));
  }
  std::ofstream(Path("bare.rules"))
      << "[FormatVersion=1.0] [FuzzyRules] [RuleType=x]\n"
      << kNoVariables << kNoVariables << "[RuleList] [~RuleList] [~FuzzyRules]";
  Do("load FuzzyRules alias bare filename (" + Path("bare.rules") + ")");
  const std::pair<const char*, const char*> cases[] = {
      {"teacher", "teacher has 0 points to draw: a curve takes two epochs of training"},
      {"empty", "empty has 0 rows of numbers: a picture takes two"},
      {"d columns {0, 1, 2}", "columns takes one column or two"},
      {"d columns {3}", "d has no column 3"},
      {"net", "tag data not found"},
      {"net data empty", "empty has 1 row: a picture takes two"},
      {"k data empty", "empty has neither labels nor classes"},
      {"k columns {2}", "k has no column 2"},
      {"fuzzy method rule", "method takes terms or rules"},
      {"fuzzy method rules data d", "method does not go with data"},
      {"d data d", "data is no tag of plot"},
      {"d column {0}", "column is no tag of plot: columns?"},
      {"words", "cannot plot this type of object"},
      {"k columns {}", "columns takes the inputs to draw"},
      {"k data d columns {output0}", "output0 is no input of k"},
      {"cube columns {0}", "cube has more than two dimensions"},
      {"one", "one has only one unit"},
      {"nothing", "nothing has no columns"},
      {"d columns {}", "columns takes one column or two"},
      {"d columns {x1}", "d has no column x1"},
      {"classifier data classes", "classes has 61 classes: a table has room for 60"},
      {"bare", "bare has no terms"},
      {"bare method rules", "bare has no rules"},
  };
  for (const auto& [what, failure] : cases) {
    EXPECT_LT(interpreter_.Execute(std::string("plot ") + what + " filename (x.gp)"), 0) << what;
    EXPECT_EQ(interpreter_.GetError(), failure);
  }
  for (const std::string name : {"x.jpg", "x"}) {
    EXPECT_LT(interpreter_.Execute("plot d filename (" + name + ")"), 0);
    EXPECT_EQ(interpreter_.GetError(), name + " does not end in .svg, .png, .pdf, .txt or .gp");
  }
  EXPECT_LT(interpreter_.Execute("plot d"), 0);
  EXPECT_EQ(interpreter_.GetError(), "tag filename not found");
}

TEST_F(Plot, DrawsNamesAsTheyAreWrittenAndObeysNone) {
  std::ofstream(Path("bad.csv"))
      << "\"x'; system \"\"touch pwned\",\"%g_{2} `id` \\\",\"a\nEOD\n\"\n"
      << "1,2,%d\n3,4,\"\xff\x1b[2J\xe2\x80\xae\"\n5,6," << std::string(10000, 'y') << '\n';
  Do("load CSV alias bad filename (" + Path("bad.csv") + ") labels {2} outputs {2}");
  const std::string script = ScriptOf("bad");
  for (const std::string piece :
       {"'x'.\"'\".'; system \"touch pwned' at", "'%g_{2} `id` \\' at", "title '%d'",
        "title '? [2J '", "title 'yyyyyyyyyyyyyyyyyyyyyyyyy…'"}) {
    EXPECT_NE(script.find(piece), script.npos) << piece << '\n' << script;
  }
  Do("create MLP alias n inputs 2 layers 2 hidden {} outputs 3 bias on seed 1");
  EXPECT_NE(ScriptOf("n data bad").find("'%%d' 0"), std::string::npos);  // a tick is a pattern
  // Data blocks hold numbers alone.
  std::istringstream lines(script);
  bool is_data = false;
  for (std::string line; std::getline(lines, line);) {
    if (line == "EOD") is_data = false;
    EXPECT_TRUE(!is_data || line.find_first_not_of("0123456789.e+- ") == line.npos) << line;
    if (line.ends_with("<< EOD")) is_data = true;
  }
}

TEST(Legible, MakesAnyBytesText) {
  const struct {
    std::string text, legible;
  } cases[] = {
      {"", ""},
      {"Käfer λ 𝄞", "Käfer λ 𝄞"},
      {"a\tb\x7f\n", "a b  "},
      {"\xc3", "?"},
      {"\xe2\x82", "??"},
      {"\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80", "?????????"},  // too long, half a pair, too large
      {"123456789", "123456789"},
      {"1234567890", "12345678…"},
      {"äöüäöüäöüä", "äöüäöüäö…"},
      {"山桜a山桜", "山桜a山桜"},
      {"山桜山桜山桜", "山桜山桜…"},  // a wide letter takes the room of two
      {"🚀🦖🪐😀🚀", "🚀🦖🪐😀…"},
  };
  for (const auto& [text, legible] : cases) EXPECT_EQ(Legible(text, 9), legible);
  EXPECT_EQ(Utf8(Characters("Käfer λ 𝄞")), "Käfer λ 𝄞");
}

TEST(TextPicture, HasRoomForItsKey) {
  TPanel panel;
  for (const std::string& name : {std::string(18, 'a'), std::string(14, 'b')}) {
    panel.series.push_back({name, TStroke::kPoints, 0, {{0.5, 0.5}}});
  }
  const std::string text = DrawText({"", {panel}}, 40, TCharacters::kUnicode);
  EXPECT_NE(text.find(std::string(14, 'b')), text.npos) << text;
}

TEST(LargePicture, IsThinnedAndSaysSo) {
  const std::clock_t start = std::clock();
  constexpr int kRows = 1000000;
  Data set(kRows, 2, 0, false);
  for (int n = 0; n < kRows; ++n) set.AddRow(std::vector{1.0 * n, 1.0 * (n % 7)}, {});
  TKohonenNetwork map(2, {1000, 1000});
  for (std::size_t i = 0; i < map.Prototypes().size(); ++i)
    map.Prototypes()[i] = static_cast<double>(i % 13);
  for (const auto& [picture, title] :
       {std::pair(ScatterPicture("d", set, 0, 1), "d, one in 250 of 1000000 rows"),
        std::pair(DistributionPicture("d", set, 1), "d"),
        std::pair(DistancesPicture("k", map, nullptr), "Distances on k, means of 8 x 8 cells")}) {
    EXPECT_EQ(picture.title, title);
    EXPECT_LT(GnuplotScript(picture, TPictureFormat::kSvg).size(), std::size_t{2000000});
    EXPECT_LT(DrawText(picture, 80, TCharacters::kUnicode).size(), std::size_t{20000});
  }
  EXPECT_EQ(DistributionPicture("d", set, 1).panels[0].series[0].points[1].y, 142858);
  EXPECT_LT(std::clock() - start, 30 * CLOCKS_PER_SEC);
}

TEST(TextPicture, DrawsCurvesMarksAndCells) {
  TPanel panel;
  panel.x = {"epoch", 0, 10, false, {}};
  panel.y = {"error", 0.01, 10, true, {}};
  panel.series = {{"a", TStroke::kLine, 0, {{0, 10}, {10, 0.01}}},
                  {"b", TStroke::kPoints, 1, {{5, 10}}}};
  panel.heads = {{9, "end", true}};
  EXPECT_EQ(DrawText({"T", {panel}}, 40, TCharacters::kAscii),
            "T\n\n"
            "     error\n"
            "                                  end\n"
            "   10+'--.            x            :\n"
            "     |    '--.                     :\n"
            "    1+        '---.                :\n"
            "     |            '---.            :\n"
            "     |                '---.        :\n"
            "  0.1+                    '---.    :\n"
            "     |                         '--.:\n"
            " 0.01+                             :--.\n"
            "     ++---------------+---------------+\n"
            "      0               5              10\n"
            "                    epoch\n"
            "  -- a   x b\n");
  for (const char* piece : {"set logscale y", "set ytics ('0.01' 0.01, '0.1' 0.1"}) {
    EXPECT_NE(GnuplotScript({"T", {panel}}, TPictureFormat::kSvg).find(piece), std::string::npos);
  }
}

TEST(Canvas, LeavesOutWhatLiesBeyondIt) {
  TCanvas canvas(2, 1);
  TCanvas larger(3, 3);
  larger.Write(0, 0, U"桜!");
  canvas.Place(0, 0, larger);
  for (const auto& [column, line] : {std::pair(-1, 0), {2, 0}, {0, -1}, {0, 1}}) {
    canvas.Put(column, line, U'x');
    canvas.PutDot(column * TCanvas::kAcross, line * TCanvas::kDown);
    EXPECT_TRUE(canvas.IsEmpty(column, line));
  }
  EXPECT_EQ(canvas.Text(TCharacters::kUnicode), "桜\n");
  EXPECT_EQ(canvas.Text(TCharacters::kAscii), "??\n");
}

TEST(ErrorAxis, HasRoomForAnyErrors) {
  const struct {
    double lower, upper, axis_lower, axis_upper;
    bool is_logarithmic;
  } cases[] = {{0, 0, 0, 5e-10, false},       {2, 2, 1, 3, false},
               {1, 2, 0.95, 2.05, false},     {1, 100, 0.8, 125, true},
               {1e-30, 1, 8e-13, 1.25, true}, {0, 1, 8e-13, 1.25, true},
               {1, 1e300, 8e287, 1e300, true}};
  for (const auto& [lower, upper, axis_lower, axis_upper, is_logarithmic] : cases) {
    const TAxis axis = ErrorAxis(lower, upper);
    EXPECT_DOUBLE_EQ(axis.lower, axis_lower) << lower << ' ' << upper;
    EXPECT_DOUBLE_EQ(axis.upper, axis_upper) << lower << ' ' << upper;
    EXPECT_EQ(axis.is_logarithmic, is_logarithmic) << lower << ' ' << upper;
  }
}

}  // namespace
}  // namespace kiln
