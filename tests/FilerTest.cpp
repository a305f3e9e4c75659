#include "FileHandler/Filer.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>
#include <sstream>
#include <utility>
#include <vector>

#include "FileTestTools.h"
#include "Shared/TException.h"

namespace kiln {
namespace {

using Table = std::vector<std::pair<std::string, std::string>>;

class FilerTest : public TFileTest {
 protected:
  // Loads a text and tells what went wrong.
  std::string LoadFailure(const std::string& text) {
    Write(text);
    const std::string failure = Failure([&] { Filer::Load(path_); });
    return failure.find(path_) == std::string::npos ? failure : With(failure, path_, "f");
  }

  // The text that a save of what the file at `path` holds makes.
  std::string SavedAgain(const std::string& path) {
    const Filer::DataSets sets = Filer::Load(path);
    Filer::Save(path_, sets.expected.get(), sets.generated.get());
    return Contents(path_);
  }
};

TEST_F(FilerTest, ReadsTwoSetsWrittenByHand) {
  EXPECT_EQ(SavedAgain(KILN_TEST_DATA "/four-groups.dat"),
            "[FormatVersion = 1.0]\n\n[DataSet]\n[Rows = 2]\n[Inputs = 1]\n"
            "[ExpectedOutputs = 2]\n[GeneratedOutputs = 2]\n[Error = 1]\n\n[Data]\n"
            "1   10 11   20 21   0.5 \n2   12 13   22 23   -0.5 \n[~Data]\n\n[~DataSet]\n");
  const std::string text = Contents(path_);
  EXPECT_EQ(SavedAgain(path_), text);
  EXPECT_EQ(LoadFailure("[DataSet]\n[Rows = 2]\n[Data]\n\n\n[~Data]\n[~DataSet]"), "none");
}

TEST_F(FilerTest, WritesTheDocumentedLayout) {
  Data expected(2, 2, 0, true);
  LabelList labels;
  labels.Append("~up", 1.0);
  labels.Append("down", 0.25);
  expected.AddRow(std::vector{9.0, 9.0}, {});
  expected.AddRow(std::vector{0.1, 1.0}, {}, &labels);
  expected.AddRow(std::vector{-1e300, 0.0}, {});  // overwrites the first row: the ring wraps
  Data generated(2, 0, 1, false);
  generated.AddRow({}, std::vector{0.5});
  generated.AddRow({}, std::vector{-0.0});
  Filer::Save(path_, &expected, &generated);
  const std::string text = Contents(path_);
  EXPECT_EQ(text,
            "[FormatVersion = 1.0]\n\n[DataSet]\n[Rows = 2]\n[Inputs = 2]\n"
            "[ExpectedOutputs = Labels]\n[GeneratedOutputs = Labels]\n[Error = 1]\n\n[Data]\n"
            "0.1 1   [ ~up down=0.250000000 ]   []   0.5 \n-1e+300 0   []   []   -0 \n"
            "[~Data]\n\n[~DataSet]\n");
  EXPECT_EQ(SavedAgain(path_), text);

  expected.Clear();
  EXPECT_THROW(Filer::Save(path_, &expected, &generated), TException);
  Filer::Save(path_, nullptr, &generated);
  EXPECT_EQ(
      Contents(path_),
      "[FormatVersion = 1.0]\n\n[DataSet]\n[Rows = 2]\n[Inputs = 0]\n[ExpectedOutputs = 0]\n"
      "[GeneratedOutputs = 0]\n[Error = 1]\n\n[Data]\n    0.5 \n    -0 \n[~Data]\n\n[~DataSet]\n");
}

TEST_F(FilerTest, ReturnsTheSameNumbers) {
  using TLimits = std::numeric_limits<double>;
  std::vector<double> values{TLimits::max(), TLimits::denorm_min(), -TLimits::infinity(), -0.0};
  std::mt19937_64 bits(1);
  while (values.size() < 3000) {
    const double value = std::bit_cast<double>(bits());
    if (value == value) values.push_back(value);
  }
  Data set(3000, 1, 0, false);
  set.AddBlock(values, {}, 3000);
  Filer::Save(path_, &set);
  std::vector<double> loaded(3000);
  Filer::Load(path_).expected->GetBlock(loaded, {}, 0, 2999);
  EXPECT_EQ(loaded, values);
}

TEST_F(FilerTest, RefusesBrokenFiles) {
  const std::string open = "[DataSet]\n[Rows = 1]\n[Inputs = 1]\n";
  const std::string labelled = open + "[ExpectedOutputs = Labels]\n[Data]\n5 ";
  const Table kCases{
      {"", "start of block expected (f, line 1)"},
      {"[DataSet]\n[Inputs = 1]\n[Inputs = 1]", "bad-header (f, line 3)"},
      {open + "[ROWS = 1]", "bad-header (f, line 4)"},
      {open + "[Columns = 1]", "bad-header (f, line 4)"},
      {open + "[Error = 1", "bad-header (f, line 4)"},
      {open + "[Error = -1]", "bad-header (f, line 4)"},
      {open + "[Error = 2147483648]", "bad-header (f, line 4)"},
      {open + "[Error = labels]", "No labels in inputs"},
      {"[DataSet][Data]", "Assertion failed: LngRows>=0, file FileHandler/Filer"},
      {open + "[Table]", "[Data] expected (f, line 4)"},
      {open + "[Data]\nx", "number-expected (f, line 5)"},
      {open + "[Data]\n[~Data]", "Token (number) expected (f, line 5)"},
      {open + "[Data]\n1[~Data][~DataSet]\nmore", "End Tag expected (f, line 6)"},
      {labelled + "5", "Assertion failed: ch == '[', file FileHandler/Filer"},
      {labelled + "[~Data]", "Unexpected End Tag (f, line 6)"},
      {labelled + "[a = ]", "number-expected (f, line 6)"},
      {labelled + "[a <", "Unexpected special character (f, line 6)"},
      {"[DataSet][Rows = 2147483647][Inputs = 2147483647][Error = 9]\n[Data]1 2",
       "Rows = 2147483647 is more than the file holds (f, line 2)"},
      {"[DataSet][Rows = 1000000]\n[Data][~Data][~DataSet]",
       "Rows = 1000000 is more than the file holds (f, line 2)"},
      {"[DataSet][Rows = 0][Inputs = 1073741825]\n[Data]", "Invalid Data Size"},
  };
  for (const auto& [text, failure] : kCases) {
    EXPECT_TRUE(LoadFailure(text).starts_with(failure)) << text << ": " << LoadFailure(text);
  }
  EXPECT_THROW(Filer::Load("/absent/file"), FileTools::OpenError);
}

// Cut off or damaged anywhere, a file is refused or read: nothing else may happen.
TEST_F(FilerTest, SurvivesDamageAtEveryByte) {
  const std::string text = SavedAgain(KILN_TEST_DATA "/weather.dat");
  for (std::size_t size = 0; size < text.size(); ++size) {
    if (LoadFailure(text.substr(0, size)) == "none") {
      EXPECT_EQ(SavedAgain(path_), text) << "cut at " << size;
    }
    for (const char damage : {'[', ']', '=', '9'}) {
      std::string damaged = text;
      damaged[size] = damage;
      LoadFailure(damaged);
    }
  }
}

TEST_F(FilerTest, TellsKindsOfFilesApart) {
  const Table kCases{
      {"[dataset][ExpectedOutputs = Labels][Error = 2][Rows = 7][Data]",
       "(data :rows 7 :inputs 0 :actual-outputs -1 :calc-outputs 0 :errors 2)"},
      {"[DataSet][Error = 2][Inputs = 1]", "bad-header"},
      {"[DataSet][Rows = Labels]", "bad-header"},
      {"[DataSet]]", "bad-header"},
      {"[DataSet][Inputs = 1][Data]", "bad-header"},
      {"[Rows = 1]", "unknown-header"},
      {"[Network]", "network"},
      {"[NeuralNetwork]", "network"},
      {"[FuzzyRules]", "(unknown-header :header FuzzyRules)"},
      {"]", "unknown-header"},
  };
  for (const auto& [text, description] : kCases) {
    Write(text);
    std::ostringstream out;
    Filer::DescribeFile(path_).Print(out);
    EXPECT_EQ(out.str(), description) << text;
  }
  EXPECT_EQ(Filer::DescribeFile("/absent/file").Name(), "file-read-error");
}

}  // namespace
}  // namespace kiln
