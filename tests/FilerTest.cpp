#include "FileHandler/Filer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <sstream>

#include "FileHandler/SafeFile.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {
namespace {

const std::string kHandWritten = KILN_TEST_DATA "/";

std::string Contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class FilerTest : public testing::Test {
 protected:
  ~FilerTest() override { std::filesystem::remove(path_); }

  void Write(const std::string& text) { std::ofstream(path_, std::ios::binary) << text; }

  // Loads a text and tells what went wrong.
  std::string LoadFailure(const std::string& text) {
    Write(text);
    try {
      Filer::Load(path_);
    } catch (const FileTools::Error& failure) {
      return failure.Message() + ":" + std::to_string(failure.Line());
    } catch (const TException& failure) {
      return failure.what();
    } catch (const TAssertion& failure) {
      return std::string(failure.what()).substr(0, std::string(failure.what()).rfind(','));
    }
    return "none";
  }

  // The text that a save of what the file holds makes.
  std::string SavedAgain() {
    const Filer::DataSets sets = Filer::Load(path_);
    Filer::Save(path_, sets.expected.get(), sets.generated.get());
    return Contents(path_);
  }

  std::string Description() {
    std::ostringstream out;
    Filer::DescribeFile(path_).Print(out);
    return out.str();
  }

  const std::string path_ = testing::TempDir() + "filer-" +
                            testing::UnitTest::GetInstance()->current_test_info()->name() + ".dat";
};

TEST_F(FilerTest, ReadsLabelsCommentsAndOddCaseWrittenByHand) {
  const Filer::DataSets sets = Filer::Load(kHandWritten + "weather.dat");
  const Data& days = *sets.expected;
  EXPECT_EQ(sets.generated, nullptr);
  ASSERT_EQ(days.DataRows(), 3);
  EXPECT_EQ(days.Outputs(), 0);
  EXPECT_EQ(days.GetInputDatum(0, 1), 0.4);
  EXPECT_EQ(days.GetInputDatum(1, 1), 0.01);
  EXPECT_EQ(days.GetInputDatum(2, 1), 100.0);
  EXPECT_EQ(days.GetLabels(0).Entries(), (std::vector<LabelEntry>{{1.0, "dry"}, {0.75, "warm"}}));
  EXPECT_EQ(days.GetLabels(1).Entries(), (std::vector<LabelEntry>{{0.75, "cold"}}));
  EXPECT_TRUE(days.GetLabels(2).Empty());
}

TEST_F(FilerTest, DealsFourGroupsToTwoSets) {
  const Filer::DataSets sets = Filer::Load(kHandWritten + "four-groups.dat");
  const DataRow expected = sets.expected->Row(1);
  const DataRow generated = sets.generated->Row(1);
  EXPECT_EQ(std::vector(expected.Inputs.begin(), expected.Inputs.end()), std::vector{2.0});
  EXPECT_EQ(std::vector(expected.Outputs.begin(), expected.Outputs.end()),
            (std::vector{12.0, 13.0}));
  EXPECT_EQ(std::vector(generated.Inputs.begin(), generated.Inputs.end()),
            (std::vector{22.0, 23.0}));
  EXPECT_EQ(std::vector(generated.Outputs.begin(), generated.Outputs.end()), std::vector{-0.5});
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
  EXPECT_EQ(SavedAgain(), text);
}

TEST_F(FilerTest, ReturnsTheSameNumbers) {
  using TLimits = std::numeric_limits<double>;
  std::vector<double> values{TLimits::max(),      TLimits::denorm_min(),
                             TLimits::infinity(), -TLimits::infinity(),
                             1.0 / 3.0,           -0.0};
  std::mt19937_64 bits(1);
  while (values.size() < 3000) {
    const double value = std::bit_cast<double>(bits());
    if (value == value) values.push_back(value);
  }
  Data set(1000, 2, 1, false);
  for (std::size_t i = 0; i < values.size(); i += 3) {
    set.AddRow(std::span(values).subspan(i, 2), std::span(values).subspan(i + 2, 1));
  }
  Filer::Save(path_, &set);
  const std::string text = Contents(path_);
  const auto loaded = Filer::Load(path_).expected;
  for (int n = 0; n < 1000; ++n) {
    ASSERT_EQ(loaded->Row(n).Inputs[1], values[static_cast<std::size_t>(n) * 3 + 1]);
    ASSERT_EQ(loaded->Row(n).Outputs[0], values[static_cast<std::size_t>(n) * 3 + 2]);
  }
  EXPECT_EQ(SavedAgain(), text);

  Data nothing(0, 3, 0, false);
  Filer::Save(path_, &nothing);
  EXPECT_EQ(Filer::Load(path_).expected->Inputs(), 3);
}

TEST_F(FilerTest, RefusesBrokenFiles) {
  const std::string open = "[DataSet]\n[Rows = 1]\n[Inputs = 1]\n";
  const std::string labelled = open + "[ExpectedOutputs = Labels]\n[Data]\n5 ";
  const struct {
    std::string text;
    const char* failure;
  } kCases[] = {
      {"", "start of block expected:1"},
      {"word", "start of block expected:1"},
      {"[Other]", "[DataSet] expected:1"},
      {"[DataSet]\n[ExpectedOutputs = 1]\n[Inputs = 1]", "bad-header:3"},
      {"[DataSet]\n[Inputs = 1]\n[Inputs = 1]", "bad-header:3"},
      {open + "[ROWS = 1]", "bad-header:4"},
      {open + "[Columns = 1]", "bad-header:4"},
      {open + "[Error = 1", "bad-header:4"},
      {open + "[Error = -1]", "bad-header:4"},
      {open + "[Error = 2147483648]", "bad-header:4"},
      {open + "[Error = x]", "integer-expected:4"},
      {open + "[Error = labels]", "No labels in inputs Bad Format Filer::ReadHeader"},
      {"[DataSet][Data]", "Assertion failed: LngRows>=0, file FileHandler/Filer"},
      {open + "[Table]", "[Data] expected:4"},
      {open + "[Data]\nx", "number-expected:5"},
      {open + "[Data]\n[~Data]", "Token (number) expected:5"},
      {open + "[Data]\n1\n2\n[~Data]", "End Tag expected:6"},
      {open + "[Data]\n1[~Data][~DataSet]\nmore", "End Tag expected:6"},
      {labelled + "5", "Assertion failed: ch == '[', file FileHandler/Filer"},
      {labelled + "[~Data]", "Unexpected End Tag:6"},
      {labelled + "[a = ]", "number-expected:6"},
      {labelled + "[a <", "Unexpected special character:6"},
      {labelled + "[a b", "Unexpected end of file:6"},
      {"[DataSet][Rows = 2147483647][Inputs = 2147483647][Error = 9]\n[Data]1 2",
       "Rows = 2147483647 is more than the file holds:2"},
      {"[DataSet][Rows = 1073741825]\n[Data]", "Invalid Data Size Bad Parameter Data::Data"},
  };
  for (const auto& test : kCases) EXPECT_EQ(LoadFailure(test.text), test.failure) << test.text;
  EXPECT_THROW(Filer::Load("/absent/file"), FileTools::OpenError);
}

// Cut off or damaged anywhere, a file is refused or read: nothing else may happen.
TEST_F(FilerTest, SurvivesDamageAtEveryByte) {
  Write(Contents(kHandWritten + "weather.dat"));
  const std::string text = SavedAgain();
  for (std::size_t size = 0; size < text.size(); ++size) {
    if (LoadFailure(text.substr(0, size)) == "none") {
      EXPECT_EQ(SavedAgain(), text) << "cut at " << size;
    }
    for (const char damage : {'[', ']', '=', '9'}) {
      std::string damaged = text;
      damaged[size] = damage;
      LoadFailure(damaged);
    }
  }
}

TEST_F(FilerTest, RefusesToSaveWithoutHarm) {
  Data one(1, 1, 0, false);
  one.AddRow(std::vector{1.0}, {});
  Data none(1, 1, 0, false);
  Write("old");
  EXPECT_THROW(Filer::Save(path_, &one, &none), TException);
  EXPECT_THROW(Filer::Save(path_ + "/inside", &one), FileTools::SaveError);
  EXPECT_EQ(Contents(path_), "old");
}

TEST_F(FilerTest, TellsKindsOfFilesApart) {
  const struct {
    const char* text;
    const char* description;
  } kCases[] = {
      {"[dataset][ExpectedOutputs = Labels][Error = 2][Rows = 7][Data]",
       "(data :rows 7 :inputs 0 :actual-outputs -1 :calc-outputs 0 :errors 2)"},
      {"[DataSet][Error = 2][Inputs = 1]", "bad-header"},
      {"[DataSet][Rows = Labels]", "bad-header"},
      {"[DataSet][Inputs = 1][Data]", "bad-header"},
      {"[FormatVersion = 1.0][NETWORK]", "network"},
      {"[NeuralNetwork]", "network"},
      {"[FuzzyRules]", "(unknown-header :header FuzzyRules)"},
      {"word", "unknown-header"},
      {"]", "unknown-header"},
      {"[=", "unknown-header"},
  };
  for (const auto& test : kCases) {
    Write(test.text);
    EXPECT_EQ(Description(), test.description) << test.text;
  }
  std::filesystem::remove(path_);
  EXPECT_EQ(Description(), "file-read-error");
}

}  // namespace
}  // namespace kiln
