#include "Console/Screen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>

#include "Console/TErrorCurve.h"

namespace kiln {
namespace {

// Lives in a locale, with these values of LC_ALL, LC_CTYPE and LANG, and goes back.
class TScreenTest : public testing::Test {
 protected:
  TScreenTest() { std::setlocale(LC_CTYPE, "C.UTF-8"); }
  ~TScreenTest() override {
    std::setlocale(LC_CTYPE, "C");
    SetLocale(nullptr, nullptr, nullptr);
  }

  static void SetLocale(const char* all, const char* type, const char* language) {
    const std::pair<const char*, const char*> kVariables[] = {
        {"LC_ALL", all}, {"LC_CTYPE", type}, {"LANG", language}};
    for (const auto& [name, value] : kVariables) {
      if (value) {
        setenv(name, value, 1);
      } else {
        unsetenv(name);
      }
    }
  }
};

TEST_F(TScreenTest, CountsColumnsOfWideNarrowAndNoCharacters) {
  EXPECT_EQ(Screen::Width("aé日"), 4U);
  EXPECT_EQ(Screen::Width(std::string("\x01\0\xff", 3)), 2U);
  EXPECT_EQ(Screen::Fitting("a日b", 2), "a");
  EXPECT_EQ(Screen::Fitting("a日b", 3), "a日");
  EXPECT_EQ(Screen::Fitting("a\tb", 9), "a");
  EXPECT_EQ(Screen::Fitting("\xe6\x97", 1), "\xe6");
}

TEST_F(TScreenTest, TakesTheFirstVariableThatIsSet) {
  const struct {
    const char *all, *type, *language;
    bool has_unicode;
  } cases[] = {{nullptr, nullptr, nullptr, false},
               {"", "", "de_DE.UTF-8", true},
               {"C", nullptr, "de_DE.UTF-8", false},
               {nullptr, "de_DE.utf8", "C", true},
               {nullptr, "", "", false}};
  for (const auto& [all, type, language, has_unicode] : cases) {
    SetLocale(all, type, language);
    EXPECT_EQ(Screen::HasUnicode(), has_unicode) << (language ? language : "none");
  }
}

TEST_F(TScreenTest, ShowsTheErrorsOfLongTrainings) {
  TErrorCurve curve;
  curve.Add(1, 1.0);
  EXPECT_EQ(curve.Draw(60, 10), "");
  for (int epoch = 2; epoch <= 5000; ++epoch) {
    curve.Add(epoch, 1.0 / epoch);
    curve.Add(epoch, 7.0);
    curve.Add(epoch + 1, std::nan(""));
  }
  const std::string drawn = curve.Draw(60, 10);
  EXPECT_EQ(std::ranges::count(drawn, '\n'), 10);
  EXPECT_NE(drawn.find("4000"), std::string::npos) << drawn;
  EXPECT_EQ(drawn.find('7'), std::string::npos) << drawn;
  for (const auto& [columns, lines] : {std::pair(19U, 10U), {60U, 4U}}) {
    EXPECT_EQ(curve.Draw(columns, lines), "");
  }
  curve.Clear();
  EXPECT_EQ(curve.Draw(60, 10), "");
}

}  // namespace
}  // namespace kiln
