#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FileHandler/CsvFile.h"
#include "FileHandler/CsvScanner.h"
#include "FileTestTools.h"

namespace kiln {
namespace {

using CsvFile::Options;

class TCsvTest : public TFileTest {
 protected:
  CsvFile::Table Load(const std::string& text, const Options& options) {
    Write(text);
    return CsvFile::Load(path_, options);
  }

  // What is saved of what was loaded.
  std::string Saved(const std::string& text, const Options& options) {
    const CsvFile::Table table = Load(text, options);
    CsvFile::Save(path_, *table.set);
    return Contents(path_);
  }
};

struct TCase {
  std::string text;
  Options options;
  std::string saved;
};

TEST_F(TCsvTest, ReadsWhatOtherProgramsWrite) {
  const TCase cases[] = {
      // Separators, decimal commas, line ends, a byte order mark, blank lines, blanks around cells.
      {"a,\r1,2.5\r", {}, "a,column1\n1,2.5\n"},
      {"\xEF\xBB\xBF\"a,b\";c\r\n1,5;-2\r\n\r\n+3;4e-1", {}, "\"a,b\",c\n1.5,-2\n3,0.4\n"},
      {"a\tb;c\n 1 \t2\n", {}, "a,\"b;c\"\n1,2\n"},
      // Quotes: separators, quotes and line ends in them.
      {"\"say \"\"a\"\"\",\"two\nlines\"\n\"1\",2\n",
       {},
       "\"say \"\"a\"\"\",\"two\nlines\"\n1,2\n"},
      // The first line is a header where it has text; what says nothing is no text.
      {"1,2\n3,4\n", {}, "column0,column1\n1,2\n3,4\n"},
      {"1,NA\n3,4\n", {.skip_missing = true}, "column0,column1\n3,4\n"},
      {"1,2\n3,4\n", {.header = true}, "\"1\",\"2\"\n3,4\n"},
      {"\"1\",\"2\"\n3,4\n", {}, "\"1\",\"2\"\n3,4\n"},
      // Words, in the order of the alphabet; columns of numbers that stand for classes.
      {"x,c\n1,b\n2,a\n3,b\n", {.outputs = {"c"}}, "x,c=a,c=b\n1,0,1\n2,1,0\n3,0,1\n"},
      {"x,c\n1,2\n2,10\n", {.words = {"1"}}, "x,c=10,c=2\n1,0,1\n2,1,0\n"},
      // Labels: any text, numbers too; a column may be label and output.
      {"n,x,y\n 7 ,1,2\n\"a \",1,3\n",
       {.outputs = {"y"}, .labels = {"n"}},
       "x,y,label\n1,2,7\n1,3,\"a \"\n"},
      {"x,c\n1,b\n2,a\n",
       {.outputs = {"c"}, .labels = {"c"}},
       "x,c=a,c=b,label\n1,0,1,b\n2,1,0,a\n"},
      // Outputs in the order asked for; columns that are left out may hold anything.
      {"a,b,c,d\n1,2,x,4\n5,6,,8\n",
       {.outputs = {"3", "a"}, .ignore = {"c"}},
       "b,d,a\n2,4,1\n6,8,5\n"},
      // Rows without a value are left out, and their words with them.
      {"x,c\n1,b\n,a\n2,?\nnan,z\n3,d\n", {.skip_missing = true}, "x,c=b,c=d\n1,1,0\n3,0,1\n"},
      {"x,c\n1,\"NA\"\n", {.labels = {"c"}}, "x,label\n1,\"NA\"\n"},
      {"x\n1\n\n2\n", {.skip_missing = true}, "x\n1\n2\n"},
      // Numbers at the ends of the range, names twice, only a header.
      {"x,x\n1e999,-1e-999\ninf,0x1\n", {.ignore = {"1"}}, "x\ninf\ninf\n"},
      {"x,x\n1,2", {}, "x,x\n1,2\n"},
      {"x,y\n", {}, "x,y\n"},
  };
  for (const TCase& c : cases) {
    EXPECT_EQ(Saved(c.text, c.options), c.saved) << c.text;
  }
}

TEST_F(TCsvTest, SaysWhatIsWrongAndWhere) {
  const TCase cases[] = {
      {"", {}, "an empty file (PATH, line 1)"},
      {"a,b\n1,2\n3\n", {}, "1 cell in place of 2 (PATH, line 3)"},
      {"a,b\n1,2\n\"3\n\",4\n1,2,3\n", {}, "column 0 (a): \"3...\" is no number (PATH, line 3)"},
      {"a,b\n1,2\n1,2,3\n", {}, "more than 2 cells (PATH, line 3)"},
      {"a,b\n1,2\n1,x\n", {}, "column 1 (b): \"x\" is no number (PATH, line 3)"},
      {"a,b\n1,x\n1,2\n", {}, "column 1 (b): the number 2 among words (PATH, line 3)"},
      {"a,b\n1,2\n1, \n", {}, "column 1 (b): no value (PATH, line 3)"},
      {"a,b\r1,2\r\n\r1,NaN\n", {}, "column 1 (b): no value (PATH, line 4)"},
      {"a,b\n1,2\n1,\"x\n\n", {}, "column 1 (b): a quote without an end (PATH, line 3)"},
      {"a,b\n1,\"x\"y\n", {}, "column 1 (b): text behind the closing quote (PATH, line 2)"},
      {"a,b\n1,x\"y\n", {}, "column 1 (b): a quote inside a cell without quotes (PATH, line 2)"},
      {std::string("a,b\n1,2\n1,\0\n", 12), {}, "column 1 (b): a NUL character (PATH, line 3)"},
      {std::string("a\n\"\"\"\0\"\n", 8), {}, "column 0 (a): a NUL character (PATH, line 2)"},
      {"a,b\n1,\" \" 2\n", {}, "column 1 (b): text behind the closing quote (PATH, line 2)"},
      {"a\n1\nxääääääääääääääääääääääääääääää\n",
       {},
       "column 0 (a): \"xäääääääääääääääääääääääääääää...\" is no number (PATH, line 3)"},
      {"a,b\n3,4\n", {.header = false}, "column 0: the number 3 among words (PATH, line 2)"},
      {"a,b\n1,2\n", {.outputs = {"c"}}, "no column c (PATH, line 1)"},
      {"a,b\n1,2\n", {.outputs = {"2"}}, "no column 2 (PATH, line 1)"},
      {"a,a\n1,2\n", {.ignore = {"a"}}, "several columns are called a (PATH, line 1)"},
      {"a,b\n1,2\n", {.outputs = {"a", "0"}}, "column 0 is named twice (PATH, line 1)"},
      {"a,b\n1,2\n", {.labels = {"a"}, .ignore = {"a"}}, "column a is named twice (PATH, line 1)"},
  };
  for (const TCase& c : cases) {
    const std::string failure = Failure([&] { Load(c.text, c.options); });
    EXPECT_EQ(failure, With(c.saved, "PATH", path_)) << c.text;
  }
}

TEST_F(TCsvTest, GivesBackWhatWasSaved) {
  Data set(3, 1, 2, true);
  set.SetNames({{"a;\"b"}, {}});
  const double inf = std::numeric_limits<double>::infinity();
  LabelList labels;
  labels.Append("light", 1);
  labels.Append(" ?\n", 2);
  set.AddRow(std::vector{0.0}, std::vector{1.0, 1.0}, &labels);
  for (const double value : {0.1, 1e300, -inf}) {
    set.AddRow(std::vector{value}, std::vector{value / 3, 5e-324}, &labels);
  }
  CsvFile::Save(path_, set);
  const std::string text = Contents(path_);
  EXPECT_EQ(text.substr(0, text.find('\n')), "\"a;\"\"b\",output0,output1,label");
  EXPECT_EQ(Saved(text, {.outputs = {"1", "2"}, .labels = {"label"}}), text);
}

// Pieces that can be read on their own hold whole rows, wherever the cut would fall.
TEST_F(TCsvTest, PiecesOfATextHoldWholeRows) {
  const std::string text = "a,b\n1,\"x\ny\"\"\n\"\n\n\"\n\",2\n3,4";
  for (std::size_t size = 1; size <= text.size(); ++size) {
    std::vector<std::size_t> ends;
    for (std::size_t end = 0; end < text.size();) {
      ends.push_back(end = CsvFile::PieceEnd(text, end, size));
    }
    for (const std::size_t end : ends) {
      EXPECT_TRUE(end == 4 || end == 15 || end == 16 || end == 22 || end == text.size()) << end;
    }
    EXPECT_EQ(ends.back(), text.size());
  }
}

}  // namespace
}  // namespace kiln
