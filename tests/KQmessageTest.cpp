#include "KQmessage/TKQstructure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {
namespace {

std::string Printed(const TKQstructure& message) {
  std::ostringstream out;
  message.Print(out);
  return out.str();
}

TEST(TKQstructure, BuildsAndPrintsNestedMessages) {
  auto params = std::make_unique<TKQstructure>("Params");
  params->SetString("mode", "batch");
  params->SetDouble("LearningRate", 0.1);
  TKQstructure train("train");
  train.SetString("alias", "n");
  train.SetValue("Params", std::move(params));
  train.SetLong("epochs", -3);
  train.SetBool("verbose", false);
  EXPECT_EQ(Printed(train),
            "(train :alias n :Params (Params :mode batch :LearningRate 0.100000) :epochs -3 "
            ":verbose false)");
  EXPECT_THROW(train.SetValue("x", nullptr), TAssertion);
}

TEST(TKQstructure, SettingAgainKeepsPlaceAndSpelling) {
  TKQstructure message("m");
  message.SetLong("LearningRate", 1);
  message.SetLong("other", 2);
  message.SetLong("learningrate", 3);
  EXPECT_EQ(Printed(message), "(m :LearningRate 3 :other 2)");
  message.SetLong("third", 4);
  message.Remove("LEARNINGRATE");
  message.Remove("absent");
  EXPECT_EQ(Printed(message), "(m :third 4 :other 2)");
}

TEST(TKQstructure, CopiesAreDeepAndSlotsDouble) {
  TKQstructure message;
  for (int i = 0; i < 17; ++i) message.SetLong(std::to_string(i) + "k", i);
  EXPECT_EQ(message.Capacity(), 32U);

  TKQstructure copy = message;
  EXPECT_EQ(copy.Capacity(), 17U);
  EXPECT_EQ(Printed(copy), Printed(message));
  copy.SetLong("0k", 99);
  EXPECT_EQ(message.Deref("0K")->Name(), "0");

  const TKQstructure empty;
  copy = empty;
  EXPECT_EQ(copy.Capacity(), 0U);
  copy.SetLong("first", 1);
  EXPECT_EQ(copy.Capacity(), 16U);
}

TEST(TKQstructure, FailedLookUpsTellWhatWasExpected) {
  TKQstructure message("m");
  message.SetString("flag", "True");
  message.SetString("odd", "on");
  EXPECT_TRUE(message.DerefBoolThrow("FLAG"));
  EXPECT_NO_THROW(message.CheckMessage("flag", "TRUE"));
  EXPECT_NO_THROW(message.CheckMessage("flag", ""));
  EXPECT_EQ(message.Deref("absent"), nullptr);
  EXPECT_THROW(message.DerefAssert("absent"), TAssertion);

  const struct {
    std::function<void()> act;
    const char* what;
    const char* detail;
  } kCases[] = {
      {[&] { message.DerefThrow("absent"); },
       "cannot find keyword absent  TKQstructure::DerefThrow",
       "(error :type invalid-message :expected absent)"},
      {[&] { message.DerefBoolThrow("odd"); },
       "boolean field expected  TKQstructure::DerefBoolThrow",
       "(error :type type-error :expected boolean)"},
      {[&] { message.CheckMessage("absent", ""); },
       "invalid message: expected absent  TKQstructure::CheckMessage",
       "(error :type invalid-message :expected absent)"},
      {[&] { message.CheckMessage("odd", "off"); },
       "invalid message: expected value off  TKQstructure::CheckMessage",
       "(error :type invalid-message :tag odd :expected-value off)"},
      {[] { str2longThrow("x"); }, "x is not a long  str2longThrow",
       "(error :type invalid-message :integer-expected x)"},
      {[] { str2doubleThrow("x"); }, "x is not a double  str2doubleThrow",
       "(error :type invalid-message :number-expected x)"},
  };
  for (const auto& test : kCases) {
    try {
      test.act();
      ADD_FAILURE() << "no failure: " << test.what;
    } catch (const TException& failure) {
      EXPECT_STREQ(failure.what(), test.what);
      EXPECT_EQ(Printed(*failure.Detail()), test.detail);
    }
  }
}

TEST(TKQstructure, ReadsNumbersLikeScanf) {
  EXPECT_EQ(str2longThrow(" 42"), 42);
  EXPECT_EQ(str2longThrow("12abc"), 12);
  EXPECT_EQ(str2long("+7"), 7);
  EXPECT_EQ(str2long("-99999999999999999999"), INT32_MIN);
  EXPECT_THROW(str2long("+-7"), TAssertion);

  const struct {
    const char* text;
    double value;
  } kNumbers[] = {
      {"1e-3", 0.001},         {"\t+.5x", 0.5},       {"-2.e1e", -20.0}, {"1e", 1.0},
      {"1e999", INFINITY},     {"-1e999", -INFINITY}, {"1e-999", 0.0},   {"4e-320", 4e-320},
      {"0x1A", 26.0},          {"-0x.8p1", -1.0},     {"0x", 0.0},       {"00x5", 0.0},
      {"-InFinity", -INFINITY}};
  for (const auto& number : kNumbers) {
    EXPECT_EQ(str2doubleThrow(number.text), number.value) << number.text;
  }
  EXPECT_TRUE(std::isnan(str2double("NaN")));
  for (const char* text : {"", " ", "+", "-", "+-1", ".", "e5", "--1"}) {
    EXPECT_THROW(str2double(text), TAssertion) << text;
  }
}

TEST(TKQstructure, ParsesItsPrintedForm) {
  for (const char* text : {"leaf", "a:b", "(a :b (c :d e) :f g)"}) {
    EXPECT_EQ(Printed(TKQstructure::Parse(text)), text);
  }
  EXPECT_EQ(Printed(TKQstructure::Parse("\n( a\t:b(c)\xFF:B d:e )")), "(a :b d:e)");

  for (const char* text : {"", "(", "()", "(a", "(a :", "(a :b", "(a :b )", "(a b)", "a b", ":a",
                           ")", "(a :b c))", "(x :y (:w))"}) {
    EXPECT_THROW(TKQstructure::Parse(text), TAssertion) << text;
  }
}

}  // namespace
}  // namespace kiln
