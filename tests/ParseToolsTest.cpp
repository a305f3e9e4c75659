#include "FileHandler/ParseTools.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <sstream>

#include "FileHandler/SafeFile.h"
#include "FileHandler/Writer.h"
#include "Shared/TAssertion.h"

namespace kiln::FileTools {
namespace {

namespace fs = std::filesystem;

std::string Tokens(const std::string& text) {
  Reader reader(text, "f");
  std::string tokens;
  for (auto token = reader.ReadToken(); !token.empty(); token = reader.ReadToken()) {
    tokens.append(token).append("|");
  }
  return tokens;
}

// Every item up to the end of `block`: "w:" word, "t:" tag, "s:" statement; "+" marks those that
// were not closed.
std::string Items(const std::string& text, const std::string& block = "") {
  Reader reader(text, "f");
  std::string items;
  for (;;) {
    const ParseItem item = reader.ReadItem(block);
    if (item.kind == ParseItem::kEnd) return items;
    items += "?wts"[item.kind];
    items.append(":").append(item.name);
    if (item.kind == ParseItem::kStatement) items.append("=").append(item.value);
    items.append(item.unbracketed ? "+ " : " ");
  }
}

// What the action throws, as text.
std::string Failure(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::exception& failure) {
    return failure.what();
  }
  return "none";
}

TEST(Reader, CutsTokens) {
  const struct {
    const char* text;
    const char* tokens;
  } kCases[] = {
      {"", ""},
      {" ,\r\n\x7F\xC3", ""},
      {"a,b c\r\nd\xE9"
       "e",
       "a|b|c|d|e|"},
      {"[Rows=5][~x]", "[|Rows|=|5|]|[~|x|]|"},
      {"a/b*c<d>", "a|/|b|*|c|<|d|>|"},
      {"[", "[|"},
      {"/", "/|"},
      {"1/* x */2", "1|2|"},
      {"/* a /* b */ c */d", "d|"},
      {"/* a /* b *// c", "c|"},  // the "/" behind an inner end closes the outer comment too
      {"/*/ a */b", "b|"},        // the star of the opening does not close
      {"/* /*/ a */ b */c", "c|"},
      {"/***/x", "x|"},
  };
  for (const auto& test : kCases) EXPECT_EQ(Tokens(test.text), test.tokens) << test.text;

  std::string deep;
  for (int i = 0; i < 1'000'000; ++i) deep += "/*";
  EXPECT_EQ(Failure([&] { Tokens(deep); }), "Unexpected end of file during comment (f, line 1)");
}

TEST(Reader, TellsItemsApart) {
  const struct {
    const char* text;
    const char* items;
  } kCases[] = {
      {"", ""},
      {"[Rows=5]", "s:Rows=5 "},
      {"[ Rows , = , 5 ]", "s:Rows=5 "},
      {"[Rows = /* five */ 5]", "s:Rows=5 "},
      {"word [Tag] <", "w:word t:Tag w:< "},
      {"[Name = a/b", "s:Name=a+ w:/ w:b "},
      {"[Name /* note */ = x", "t:Name+ w:= w:x "},
      {"[Name", "t:Name+ "},
      {"[formatversion = 1][FormatVersion=0.5]x", "w:x "},
      {"[FormatVersion = 9", "s:FormatVersion=9+ "},
  };
  for (const auto& test : kCases) EXPECT_EQ(Items(test.text), test.items) << test.text;

  EXPECT_EQ(Items("a [b] [~DATA] c", "Data"), "w:a t:b ");
  Reader reader("[~Data lost kept", "f");
  EXPECT_EQ(reader.ReadItem("Data").kind, ParseItem::kEnd);
  EXPECT_EQ(reader.ReadToken(), "kept");
}

TEST(Reader, ReportsFaultsWithTheirPlace) {
  const struct {
    const char* text;
    const char* failure;
  } kCases[] = {
      {"a\n/* b\n", "Unexpected end of file during comment (f, line 2)"},
      {"a\n\nb\n", "Unexpected end of file (f, line 3)"},
      {"\n[", "Unexpected end of file (f, line 2)"},
      {"[A =\n", "Unexpected end of file (f, line 1)"},
      {"[\n]", "Unexpected special character (f, line 2)"},
      {"[A = <", "Unexpected special character (f, line 1)"},
      {"[FormatVersion = 1.01]", "Illegal Format Version (f, line 1)"},
      {"[FormatVersion = abc]", "number-expected (f, line 1)"},
      {"[~other]", "Unexpected End Tag (f, line 1)"},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(Failure([&] { Items(test.text, "block"); }), test.failure) << test.text;
  }
  EXPECT_THROW(Items("]"), TAssertion);
  EXPECT_THROW(Items("[~Data]"), TAssertion);
}

TEST(Reader, ReadsLinesWithSeveralItems) {
  Reader reader("[Neuron=1 Gain=2 Fast ] [", "f");
  EXPECT_EQ(ExpectInteger(reader.ReadItem("b"), reader, "neuron"), 1);
  const ParseItem gain = reader.ReadUnbracketedItem("b");
  EXPECT_EQ(ExpectNumber(gain, reader, "Gain"), 2.0);
  EXPECT_TRUE(gain.unbracketed);
  const ParseItem fast = reader.ReadUnbracketedItem("b");
  EXPECT_EQ(ExpectStartTag(fast, reader), "Fast");
  EXPECT_FALSE(fast.unbracketed);
  EXPECT_EQ(Failure([&] { reader.ReadUnbracketedItem("b"); }),
            "Unexpected special character (f, line 1)");
  EXPECT_EQ(Failure([&] { reader.ReadUnbracketedItem("b"); }),
            "Unexpected end of file (f, line 1)");
}

TEST(Expect, DemandsWhatItSays) {
  const auto with = [](const char* text, auto expect) {
    Reader reader(text, "f");
    return Failure([&] { expect(reader.ReadItem("block"), reader); });
  };
  const auto any_tag = [](const auto& i, const auto& r) { ExpectStartTag(i, r); };
  const auto tag = [](const auto& i, const auto& r) { ExpectStartTag(i, r, "DataSet"); };
  const auto end = [](const auto& i, const auto& r) { ExpectEndTag(i, r); };
  const auto text = [](const auto& i, const auto& r) { ExpectString(i, r, "Name"); };
  const auto value = [](const auto& i, const auto& r) { ExpectString(i, r, "Name", "Yes"); };
  const auto integer = [](const auto& i, const auto& r) { ExpectInteger(i, r, "N"); };
  const auto number = [](const auto& i, const auto& r) { ExpectNumber(i, r, "N"); };
  const auto token = [](const auto& i, const auto& r) { ExpectNumberToken(i, r); };

  EXPECT_EQ(with("[DATASET]", tag), "none");
  EXPECT_EQ(with("[Other]", tag), "[DataSet] expected (f, line 1)");
  EXPECT_EQ(with("word", any_tag), "start of block expected (f, line 1)");
  EXPECT_EQ(with("word", end), "End Tag expected (f, line 1)");
  EXPECT_EQ(with("[Title = x]", text), "[Name = <string>] expectedTitle (f, line 1)");
  EXPECT_EQ(with("[name = YES]", value), "none");
  EXPECT_EQ(with("[Name = no]", value), "[Name = Yes] expected (f, line 1)");
  EXPECT_EQ(with("[n = 12abc]", integer), "none");
  EXPECT_EQ(with("[M = 1]", integer), "[N = <integer>] expected (f, line 1)");
  EXPECT_EQ(with("[N = x]", integer), "integer-expected (f, line 1)");
  EXPECT_EQ(with("[N]", number), "[N = <number>] expected (f, line 1)");
  EXPECT_EQ(with("[N = x]", number), "number-expected (f, line 1)");
  EXPECT_EQ(with("[N = 1]", token), "Token (number) expected (f, line 1)");
  EXPECT_EQ(with("1.5", token), "none");
}

TEST(Writer, WritesWhatTheReaderReads) {
  std::ostringstream out;
  {
    Writer writer(out);
    writer.WriteFormatVersion();
    writer.WriteStartTag("Block");
    writer.WriteNumber("Weight", 0.5, 6);
    writer.OpenBracket();
    writer.WriteStartTag("All");
    writer.WriteInteger("Index", -7);
    writer.WriteString("Name", "low");
    EXPECT_THROW(writer.WriteEndTag("Block"), TAssertion);
    writer.CloseBracket();
    writer.WriteToken("word");
    writer.WriteNumberToken(0.1);
    writer.WriteNewline();
    writer.WriteEndTag("Block");
  }
  EXPECT_EQ(out.str(),
            "[FormatVersion = 1.0]\n\n[Block]\n[Weight = 0.500000]\n[All Index=-7 Name=low ]\n"
            "word 0.1 \n[~Block]\n");
}

std::string Contents(const fs::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

class SaveFileTest : public testing::Test {
 protected:
  SaveFileTest() { fs::create_directory(directory_); }
  ~SaveFileTest() override { fs::remove_all(directory_); }

  // Saves `text` under the name and tells what went wrong.
  std::string Save(const std::string& name, const std::string& text) {
    return Failure(
        [&] { SaveFile(directory_ / name, [&](Writer& writer) { writer.WriteText(text); }); });
  }

  const fs::path directory_ =
      fs::path(testing::TempDir()) /
      ("kiln-" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(SaveFileTest, ReplacesAFileAndKeepsItsPermissionsAndLinks) {
  EXPECT_EQ(Save("plain", "old"), "none");
  fs::permissions(directory_ / "plain", fs::perms::owner_read | fs::perms::owner_write);
  fs::create_symlink("plain", directory_ / "link");
  fs::create_symlink("later", directory_ / "dangling");
  EXPECT_EQ(Save("link", "new"), "none");
  EXPECT_EQ(Save("dangling", "first"), "none");

  EXPECT_TRUE(fs::is_symlink(directory_ / "link"));
  EXPECT_EQ(Contents(directory_ / "plain"), "new");
  EXPECT_EQ(fs::status(directory_ / "plain").permissions(),
            fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(Contents(directory_ / "later"), "first");
}

TEST_F(SaveFileTest, LeavesTheOldFileWhenItFails) {
  EXPECT_EQ(Save("file", "old"), "none");
  EXPECT_EQ(Failure([&] {
              SaveFile(directory_ / "file", [](Writer& writer) {
                writer.WriteText("half");
                throw std::runtime_error("stop");
              });
            }),
            "stop");
  EXPECT_EQ(Contents(directory_ / "file"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(directory_), {}), 1) << "a temporary was left";

  EXPECT_THROW(SaveFile("/dev/full", [](Writer& writer) { writer.WriteText("x"); }), SaveError);
  EXPECT_THROW(SaveFile(directory_, [](Writer&) {}), SaveError);
  EXPECT_NE(Save("absent/file", "x"), "none");
  EXPECT_THROW(Reader::FromFile(directory_), OpenError);
  EXPECT_THROW(Reader::FromFile(directory_ / "absent"), OpenError);
}

}  // namespace
}  // namespace kiln::FileTools
