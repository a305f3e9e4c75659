#include "KQmessage/TKQstructure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
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

TEST(TKQstructure, CopiesAreDeep) {
  TKQstructure message;
  for (int i = 0; i < 17; ++i) message.SetLong(std::to_string(i) + "k", i);
  TKQstructure copy = message;
  EXPECT_EQ(Printed(copy), Printed(message));
  copy.SetLong("0k", 99);
  EXPECT_EQ(message.Deref("0K")->Name(), "0");
  message = copy;
  EXPECT_EQ(Printed(message), Printed(copy));
  message.Remove("3k");
  message.Remove("3k");
  message.Remove("16k");
  EXPECT_EQ(message.Count(), 15U);
  EXPECT_EQ(message.Deref("15k")->Name(), "15");
}

// The text of the TException that the action throws and, behind it, the detail.
template <typename TAction>
std::string DetailedFailure(const TAction& action) {
  try {
    action();
  } catch (const TException& failure) {
    return failure.what() + Printed(*failure.Detail());
  }
  return "none";
}

TEST(TKQstructure, FailedLookUpsTellWhatWasExpected) {
  TKQstructure message("m");
  message.SetString("flag", "True");
  message.SetString("odd", "on");
  EXPECT_TRUE(message.DerefBoolThrow("FLAG"));
  EXPECT_NO_THROW(message.CheckMessage("flag", "TRUE"));
  EXPECT_NO_THROW(message.CheckMessage("odd", ""));
  EXPECT_EQ(DetailedFailure([&] { message.DerefBoolThrow("odd"); }),
            "boolean field expected  TKQstructure::DerefBoolThrow"
            "(error :type type-error :expected boolean)");
  EXPECT_EQ(DetailedFailure([&] { message.DerefThrow("none"); }),
            "cannot find keyword none  TKQstructure::DerefThrow"
            "(error :type invalid-message :expected none)");
  for (const bool value : {true, false}) {
    message.SetBool("flag", value);
    EXPECT_EQ(message.DerefBoolThrow("flag"), value);
  }
  EXPECT_EQ(DetailedFailure([&] { message.CheckMessage("none", ""); }),
            "invalid message: expected none  TKQstructure::CheckMessage"
            "(error :type invalid-message :expected none)");
  EXPECT_EQ(DetailedFailure([&] { message.CheckMessage("odd", "off"); }),
            "invalid message: expected value off  TKQstructure::CheckMessage"
            "(error :type invalid-message :tag odd :expected-value off)");
}

TEST(TKQstructure, ReadsNumbersLikeScanf) {
  EXPECT_EQ(str2longThrow(" 42"), 42);
  EXPECT_EQ(str2longThrow("+12abc"), 12);
  EXPECT_EQ(str2long("-99999999999999999999"), INT32_MIN);
  for (const char* text :
       {"1e-3", "\t+.5x", "-2.e1e", "1e", "1e999", "-1e999", "1e-999", "4e-320", "0x1A", "-0x.8p1",
        "0x", "00x5", "-0x1p1024", "0x1p-2000", "-InFinity", "0x-1"}) {
    EXPECT_EQ(str2doubleThrow(text), std::strtod(text, nullptr)) << text;
  }
  EXPECT_TRUE(std::isnan(str2double("NaN")));
  EXPECT_EQ(DetailedFailure([] { str2longThrow("x"); }),
            "x is not a long  str2longThrow(error :type invalid-message :integer-expected x)");
  EXPECT_EQ(DetailedFailure([] { str2doubleThrow("x"); }),
            "x is not a double  str2doubleThrow(error :type invalid-message :number-expected x)");
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
