#include "FileHandler/Syntax/ParseTools.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <utility>
#include <vector>

#include "FileHandler/Syntax/SafeFile.h"
#include "FileTestTools.h"
#include "Shared/TAssertion.h"

namespace kiln::FileTools {
namespace {

namespace fs = std::filesystem;

using Table = std::vector<std::pair<std::string, std::string>>;

// Every item up to the end of `block`, "tag[", "name=value" or a word, with "+" behind those that
// were not closed, and the fault that ends the reading.
std::string Items(const std::string& text, const std::string& block = "") {
  std::string items;
  const std::string failure = Failure([&] {
    Reader reader(text, "f");
    for (auto item = reader.ReadItem(block); item.kind != ParseItem::kEnd;
         item = reader.ReadItem(block)) {
      items.append(item.name).append(item.kind == ParseItem::kStartTag ? "[" : "");
      if (item.kind == ParseItem::kStatement) items.append("=").append(item.value);
      items.append(item.unbracketed ? "+ " : " ");
    }
  });
  return failure == "none" ? items : items + failure;
}

TEST(Reader, CutsWordsAndSkipsNestedComments) {
  EXPECT_EQ(Items("a,b c\r\nd\x7F\xE9 e/f*g<h> 1/* x */2 /***/ 3"),
            "a b c d e / f * g < h > 1 2 3 ");
  // A "/" right behind the end of an inner comment closes the outer one too; the star of an opening
  // closes nothing.
  EXPECT_EQ(Items("/* a /* b */ c */1 /* a /* b *// 2 /*/ a */3 /* /*/ a */ b */4"), "1 2 3 4 ");
  EXPECT_EQ(Items("a\n/* b\n"), "a Unexpected end of file during comment (f, line 2)");
  std::string deep = "/*";
  while (deep.size() < 4'000'000) deep += deep;
  EXPECT_EQ(Items(deep), "Unexpected end of file during comment (f, line 1)");
}

TEST(Reader, TellsItemsApart) {
  const Table kCases{{"", "Unexpected end of file (f, line 1)"},
                     {"[ Rows , = , 5 ][~BLOCK]x", "Rows=5 "},
                     {"[Rows = /* five */ 5][~Block x y", "Rows=5 "},
                     {"w [Tag]\n[~other]", "w Tag[ Unexpected End Tag (f, line 2)"},
                     {"[Name = a/b", "Name=a+ / b Unexpected end of file (f, line 1)"},
                     {"[Name /* note */ = x [~block]", "Name[+ = x "},
                     {"[Name", "Name[+ Unexpected end of file (f, line 1)"},
                     {"[formatversion = 1][FormatVersion=0.5]x[~block]", "x "},
                     {"[FormatVersion = 9 [~block]", "FormatVersion=9+ "},
                     {"[FormatVersion = 1.01]", "Illegal Format Version (f, line 1)"},
                     {"a\n\nb\n", "a b Unexpected end of file (f, line 3)"},
                     {"\n[", "Unexpected end of file (f, line 2)"},
                     {"[\n]", "Unexpected special character (f, line 2)"},
                     {"[A = <", "Unexpected special character (f, line 1)"}};
  for (const auto& [text, items] : kCases) EXPECT_EQ(Items(text, "Block"), items) << text;
  EXPECT_THROW(Reader("]", "f").ReadItem(""), TAssertion);
  EXPECT_THROW(Reader("[~Data]", "f").ReadItem(""), TAssertion);
}

TEST(Expect, DemandsStatements) {
  Reader reader("[Title = Yes]", "f");
  const ParseItem item = reader.ReadItem("");
  EXPECT_NO_THROW(ExpectString(item, reader, "TITLE", "YES"));
  EXPECT_EQ(Failure([&] { ExpectString(item, reader, "Name"); }),
            "[Name = <string>] expectedTitle (f, line 1)");
  EXPECT_EQ(Failure([&] { ExpectString(item, reader, "Title", "No"); }),
            "[Title = No] expected (f, line 1)");
  EXPECT_EQ(Failure([&] { ExpectInteger(item, reader, "N"); }),
            "[N = <integer>] expected (f, line 1)");
}

class SaveFileTest : public testing::Test {
 protected:
  SaveFileTest() { fs::create_directory(directory_); }
  ~SaveFileTest() override { fs::remove_all(directory_); }

  void Save(const std::string& name, const std::string& text) {
    SaveFile(directory_ / name, [&](Writer& writer) { writer.WriteText(text); });
  }

  std::string Contents(const std::string& name) {
    return std::string(Reader::FromFile(directory_ / name).ReadToken());
  }

  const fs::path directory_ = ScratchPath();
};

TEST_F(SaveFileTest, ReplacesAFileAndKeepsItsOwnerPermissionsAndLinks) {
  constexpr auto kPrivate = fs::perms::owner_read | fs::perms::owner_write;
  Save("plain", "old");
  constexpr uid_t kSomebody = 1234;
  const bool may_give = chown((directory_ / "plain").c_str(), kSomebody, kSomebody) == 0;
  fs::permissions(directory_ / "plain", kPrivate);
  fs::create_symlink("plain", directory_ / "link");
  fs::create_symlink("later", directory_ / "dangling");
  Save("link", "new");
  Save("dangling", "first");
  EXPECT_TRUE(fs::is_symlink(directory_ / "link"));
  EXPECT_EQ(Contents("plain"), "new");
  EXPECT_EQ(fs::status(directory_ / "plain").permissions(), kPrivate);
  struct stat state = {};
  EXPECT_EQ(stat((directory_ / "plain").c_str(), &state), 0);
  EXPECT_EQ(state.st_uid, may_give ? kSomebody : geteuid());
  EXPECT_EQ(Contents("later"), "first");
}

TEST_F(SaveFileTest, WritesPipesStraight) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  SaveFile("/dev/fd/" + std::to_string(ends[1]), [](Writer& writer) { writer.WriteText("gush"); });
  char text[5] = "";
  EXPECT_EQ(read(ends[0], text, 4), 4);
  EXPECT_STREQ(text, "gush");
  for (const int end : ends) close(end);
}

TEST_F(SaveFileTest, LeavesTheOldFileWhenItFails) {
  Save("file", "old");
  const auto fail_half_way = [](Writer& writer) {
    writer.WriteText("half");
    throw std::runtime_error("stop");
  };
  EXPECT_THROW(SaveFile(directory_ / "file", fail_half_way), std::runtime_error);
  EXPECT_EQ(Contents("file"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(directory_), {}), 1) << "a temporary was left";

  EXPECT_THROW(Save("/dev/full", "x"), SaveError);
  EXPECT_THROW(Save("", "x"), SaveError);
  EXPECT_THROW(Save("absent/file", "x"), SaveError);
  fs::create_symlink("circle", directory_ / "circle");
  EXPECT_THROW(Save("circle", "x"), SaveError);
  EXPECT_TRUE(fs::is_symlink(directory_ / "circle"));
  EXPECT_THROW(Contents("absent"), OpenError);
}

}  // namespace
}  // namespace kiln::FileTools
