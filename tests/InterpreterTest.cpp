#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "DataObject/Data.h"
#include "Interpreter/LineCheck.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {
namespace {

TEST(Registry, KeepsEntriesInTheOrderOfTheirFoldedAliases) {
  TObjectRegistry registry;
  const auto set = std::make_shared<Data>(1, 1, 0, false);
  for (const char* alias : {"b", "_", "C", "a", "B", "\xff", "Z"}) registry.Insert({alias, set});
  registry.Remove("z");
  registry.Remove("absent");
  std::vector<std::string> aliases;
  for (const TRegistryNode& node : registry) aliases.push_back(node.Alias());
  EXPECT_EQ(aliases, (std::vector<std::string>{"_", "a", "b", "B", "C", "\xff"}));
  ASSERT_TRUE(registry.Find("A"));
  EXPECT_EQ(registry.Find("A")->Type(), 1);
  EXPECT_EQ(registry.Find("A")->As<Data>(), set);
  EXPECT_FALSE(registry.Find("A")->As<TTarn>());
}

TEST(Registry, ReservesTheWordsThatCommandsSearchFor) {
  for (const char* word : {"ACTION", "tarnlabels", "neighbourhood", "ThresholdIn", "train"})
    EXPECT_TRUE(TObjectRegistry::IsReserved(word)) << word;
  for (const char* word : {"log", "append", "ritarn", "LearningRate", "Momentum", "crossover",
                           "Params", "Tournament", "seed", "trai", "trains", ""})
    EXPECT_FALSE(TObjectRegistry::IsReserved(word)) << word;
}

TEST(TCommandLine, FindsTagsAsWholeWordsFromTheLeft) {
  EXPECT_EQ(TCommandLine("create Data alias alias inputs 2").Word("alias").value, "alias");
  EXPECT_EQ(TCommandLine("x myalias a aliased b alias   c d").Word("alias").value, "c");
  EXPECT_EQ(TCommandLine("alias c").Word("alias").value, "c");
  EXPECT_EQ(TCommandLine("a rows 1 rows 2").Long("rows").value, 1);
  for (const char* line : {"", "x", "alias", "x Alias c", "x\talias c", "x alias", "x alias   "})
    EXPECT_EQ(TCommandLine(line).Word("alias").code, TReadCode::kTagAbsent) << line;
  EXPECT_EQ(TCommandLine("  two words").CommandWord(), "two");
  EXPECT_EQ(TCommandLine("a " + std::string(90, 'x')).Word("a").value.size(), 80U);
}

TEST(TCommandLine, ConvertsWithoutComplaint) {
  EXPECT_EQ(TCommandLine("n 12abc").Long("n").value, 12);
  EXPECT_EQ(TCommandLine("n abc").Long("n").value, 0);
  EXPECT_EQ(TCommandLine("n -99999999999999999999").Long("n").value, INT64_MIN);
  EXPECT_DOUBLE_EQ(TCommandLine("n +.5e1,").Double("n").value, 5.0);
  EXPECT_TRUE(TCommandLine("b ON").Boolean("b").value);
  EXPECT_FALSE(TCommandLine("b False").Boolean("b").value);
  EXPECT_EQ(TCommandLine("b yes").Boolean("b").code, TReadCode::kNotABoolean);
  EXPECT_EQ(TCommandLine("seed inputs seed 1x seed -7 seed 8").WholeNumber("seed"), -7);
  EXPECT_FALSE(TCommandLine("alias seed network seed").WholeNumber("seed"));
}

TEST(TCommandLine, ReadsListsAndParentheses) {
  const TCommandLine line("f (a b) l { 1,x , 3} empty { } open {1");
  EXPECT_EQ(line.Parenthesised("f").value, "a b");
  EXPECT_EQ(line.Parenthesised("l").code, TReadCode::kNoParentheses);
  EXPECT_EQ(line.Parenthesised("F").code, TReadCode::kTagAbsent);
  EXPECT_EQ(line.Longs("l").value, (std::vector<std::int64_t>{1, 0, 3}));
  EXPECT_EQ(line.Words("l").value, (std::vector<std::string_view>{" 1", "x ", " 3"}));
  EXPECT_EQ(line.Doubles("empty").code, TReadCode::kRead);
  EXPECT_TRUE(line.Doubles("empty").value.empty());
  EXPECT_EQ(line.Doubles("open").code, TReadCode::kTagAbsent);
  EXPECT_EQ(TCommandLine("l {" + std::string(300, '1') + "}").Words("l").value[0].size(), 254U);
}

TEST(LineCheck, FindsWhatNobodyCanHaveMeant) {
  const struct {
    const char* line;
    const char* fault;
  } cases[] = {
      {"train alias t data d epochs 5 learningrate 0.2",
       "learningrate is no tag of train: LearningRate?"},
      {"train alias t data d epochs 5 xyz 0.2", "xyz is no tag of train"},
      {"train alias t data d epochs ten", "epochs ten is no whole number"},
      {"train alias t data d epochs 5 LearningRate 0,2", "LearningRate 0,2 is no number"},
      {"train alias t data d epochs 5 LearningRate 1e400", "LearningRate 1e400 is no number"},
      {"train alias t data d epochs 5 mode bacth", "mode takes pattern or batch"},
      {"train alias t data d epochs 5 epochs 6", "epochs is given twice"},
      {"train alias t data d epochs", "epochs has no value"},
      {"train alias t data LearningRate epochs 5", "data has no value: LearningRate is a tag"},
      {"create MLP alias n inputs 1 layers 3 hidden {4, x}", "hidden x is no whole number"},
      {"create MLP alias n hidden 4", "hidden takes a list in braces"},
      {"create MLP alias n bias yes", "bias takes on or off"},
      {"query getstats mean alias s", "getstats takes max, min or average"},
      {"load CSV alias d filename (d) missing maybe", "missing takes skip"},
      {"lag source a steps --1", "steps --1 is no whole number"},
      {"train alias t data d LearningRate --1", "LearningRate --1 is no number"},
      {"query classof d e", "e is no tag of query classof"},
      {"retarn network n rules r thresholdin x", "ThresholdIn x is no number"},
      {"run filename a.txt", "filename takes a file name in parentheses"},
      {"append alias d inputs {1,,2}", "inputs has an empty element"},
      {"create MLP alias seed inputs 1 hidden {} bias ON seed -3", ""},
      {"train alias t data d LearningRate +1e-3 Momentum 0x1p-2 terminating inf", ""},
      {"  RUN   filename  ( a b.txt )", ""},
      {"help train me", ""},
  };
  for (const auto& [line, fault] : cases) {
    const TCommandLine command_line(line);
    const TCommand& command = *FindCommand(command_line.CommandWord());
    const TForm& form = command.word == "train"
                            ? command.forms.front()
                            : command.choose(command, TInterpreter(), command_line);
    const auto oddity = FindOddity(command, form, line);
    EXPECT_EQ(oddity ? oddity->fault : "", fault) << line;
  }
}

}  // namespace
}  // namespace kiln
