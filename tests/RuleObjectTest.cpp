#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FileTestTools.h"
#include "Membership/TSingletonMF.h"
#include "RuleObject/TLabelFile.h"
#include "RuleObject/TRuleFile.h"

namespace kiln {
namespace {

constexpr char kRuleFile[] = KILN_TEST_DATA "/sailing.rules";
constexpr char kLabelFile[] = KILN_TEST_DATA "/sailing.labels";

const std::string kDefaultLabels = Contents(KILN_TEST_DATA "/default.labels");

std::string Written(const TFuzzyRuleSet& rule_set) {
  return WrittenBy([&](FileTools::Writer& out) { TRuleFile::SaveRules(out, rule_set); });
}

std::string Written(const TNetLabel& labels) {
  return WrittenBy([&](FileTools::Writer& out) { TLabelFile::SaveLabels(out, labels); });
}

TFuzzyRuleSet ReadRules(const std::string& text) {
  FileTools::Reader reader(text, "f");
  return TRuleFile::LoadRules(reader);
}

TNetLabel ReadLabels(const std::string& text) {
  FileTools::Reader reader(text, "f");
  return TLabelFile::LoadLabels(reader);
}

// A variable "a" with the terms "low", "high" and "nano", "b" and "c" likewise.
TMFSetList Variables() {
  TMFSetList list(3, {});
  for (int i = 0; i < list.Count(); ++i) {
    auto set = std::make_unique<TBasicMFSet>("t", std::string(1, "abc"[i]), 3, 0, 1);
    set->SetMF(0, std::make_unique<TSingletonMF>("low", 0));
    set->SetMF(1, std::make_unique<TSingletonMF>("high", 1));
    set->SetMF(2, std::make_unique<TSingletonMF>("nano", 1));
    list.SetMFSet(i, std::move(set));
  }
  return list;
}

// A rule file over these variables.
std::string FileWith(const std::string& rules) {
  const std::string empty = Written(TFuzzyRuleSet(Variables(), TRuleList("test"), Variables()));
  const std::string head = empty.substr(0, empty.find("[~RuleList]"));
  return head + rules + "\n\n[~RuleList]\n\n[~FuzzyRules]\n";
}

// What the file says between "if" and "then".
std::string WrittenAntecedent(const TFuzzyRuleSet& rule_set) {
  const std::string text = Written(rule_set);
  const std::size_t begin = text.find("if ") + 3;
  return text.substr(begin, text.find("\n  then") - begin);
}

// The text with every "x", "y" and "z" made an atom of "a", "b" and "c".
std::string WithAtoms(const std::string& text) {
  std::string result;
  for (const char c : text) {
    const bool is_atom = c >= 'x' && c <= 'z';
    result += is_atom ? std::string("<") + "abc"[c - 'x'] + " is low 1>" : std::string(1, c);
  }
  return result;
}

// "(and x y)" for an expression of such atoms.
std::string Tree(const TRuleElement& element) {
  if (const auto* atom = std::get_if<TRuleAtom>(&element)) return {"xyz"[atom->variable]};
  const auto& expression = *std::get<std::unique_ptr<TRuleExpression>>(element);
  std::string tree = "(" + expression.OperatorName();
  for (const TRuleElement& operand : expression) tree.append(" ").append(Tree(operand));
  return tree + ")";
}

TEST(RuleFile, ReadsOperatorsByPriority) {
  const char* const kCases[][3] = {
      {"((x))", "x", "x"},
      {"x or y or z", "(or (or x y) z)", "(x or y) or z"},
      {"(x and y) and z", "(and x y z)", "x and y and z"},
      {"x or y and z or x", "(or (or x (and y z)) x)", "(x or (y and z)) or x"},
      {"not x and not not y", "(and (not x) (not (not y)))", "not x and not not y"},
      {"not (x or y) or z", "(or (not (or x y)) z)", "not (x or y) or z"},
      {"((x or (y and(not(z or x)))))", "(or x (and y (not (or z x))))",
       "x or (y and not (z or x))"},
  };
  for (const auto& [text, tree, written] : kCases) {
    const auto rules = ReadRules(FileWith("if " + WithAtoms(text) + "then <c is high>"));
    EXPECT_EQ(Tree(rules.Rules().Get(0).antecedent), tree) << text;
    EXPECT_EQ(WrittenAntecedent(rules), WithAtoms(written)) << text;
    EXPECT_EQ(Written(ReadRules(Written(rules))), Written(rules));
  }
}

TEST(RuleFile, ReadsAtoms) {
  const struct {
    const char* text;
    TRuleAtom atom;
    const char* written;
  } kCases[] = {
      {"<a is low>", {0, 0, 1, false}, "<a is low 1>"},
      {"<B IS NOT HIGH .5>", {1, 1, 0.5, true}, "<b is not high 0.5>"},
      {"<a>", {0, -1, 1, false}, "<a 1>"},
      {"<a not 1234567>", {0, -1, 1234567, true}, "<a not 1.23457e+06>"},
      {"<a is not nano>", {0, 2, 1, true}, "<a is not nano 1>"},
  };
  for (const auto& [text, atom, written] : kCases) {
    const std::string rule = std::string("if ") + text + " then <a is low> and " + text;
    const auto rules = ReadRules(FileWith(rule));
    EXPECT_EQ(std::get<TRuleAtom>(rules.Rules().Get(0).antecedent), atom) << text;
    EXPECT_EQ(rules.Rules().Get(0).consequences.Get(1), atom) << text;
    EXPECT_EQ(WrittenAntecedent(rules), written);
  }
}

TEST(RuleFile, NamesTheFaultInARule) {
  const std::string kInRules = " Bad Rule File TRuleFile::LoadRules";
  const std::string kInAtom = " Bad Rule File TRuleFile::LoadAtom";
  const std::string kInExpression = " Bad Rule File TRuleFile::LoadExpression";
  const std::string kIllFormed = "Ill formed expression" + kInExpression;
  const std::pair<std::string, std::string> kCases[] = {
      {"if then <a is low>", kIllFormed + "(1)"},
      {"if x y then", kIllFormed + "(2)"},
      {"if x and and y then", kIllFormed + "(5)"},
      {"if (x) y then", kIllFormed + "(6)"},
      {"if x) then", "Extra right bracket" + kInExpression},
      {"if (x or (y) then", "Missing right bracket" + kInExpression},
      {"if x therefore y", "Missing 'then'" + kInRules},
      {"if /*", "Unexpected end of file during comment"},
      {"if x then y and z and", "Consequence expected after 'and'" + kInRules},
      {"if x then y then", "End Tag expected"},
      {"if <d is low> then", "Invalid input or output name" + kInAtom},
      {"if <a is mid> then", "Invalid classification name" + kInAtom},
      {"if <a is quite low> then", "Extra parameter, '>' expected" + kInAtom},
      {"if <a is quite quite low> then", "Extra parameter(s), '>' expected" + kInAtom},
      {"if <a is not low 1 2> then", "'>' expected" + kInAtom},
      {"if <a was 1> then", "was\n'is' or 'not' expected" + kInAtom},
      {"if <a was low> then", "2\nillegal atom format" + kInAtom},
  };
  for (const auto& [rule, failure] : kCases) {
    const std::string text = FileWith(WithAtoms(rule));
    testing::internal::CaptureStdout();
    const std::string thrown = Failure([&] { ReadRules(text); });
    const std::string shown = testing::internal::GetCapturedStdout();
    EXPECT_EQ(shown + thrown.substr(0, thrown.find(" (f,")), failure) << rule;
  }
}

std::string Repeated(int times, const std::string& text, std::string repeated = "") {
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
}

// What can be read can be written and read again; what is nested deeper is refused, and nothing
// uses up the stack.
TEST(RuleFile, LimitsNesting) {
  const int deepest = TRuleFile::kMaxDepth;
  const auto read = [](const std::string& antecedent) {
    return ReadRules(FileWith("if " + WithAtoms(antecedent) + " then <a is low>"));
  };
  const auto nested = [](int depth) {
    return Repeated(depth, "x and (y or (") + "z" + Repeated(depth, "))");
  };
  for (const std::string& antecedent :
       {Repeated(deepest, " or y", "x"), nested(deepest / 2), Repeated(deepest, "not ") + "x",
        Repeated(100'000, " and y", "x")}) {
    const auto rules = read(antecedent);
    EXPECT_TRUE(Written(ReadRules(Written(rules))) == Written(rules)) << antecedent.substr(0, 20);
  }
  for (const std::string& antecedent :
       {Repeated(100'000, " or y", "x"), nested(100'000), Repeated(100'000, "not ") + "x",
        Repeated(100'000, "(") + "x" + Repeated(100'000, ")")}) {
    EXPECT_EQ(Failure([&] { read(antecedent); }),
              "Expression nested too deeply Bad Rule File TRuleFile::LoadExpression")
        << antecedent.substr(0, 20);
  }
}

TEST(RuleFile, ReadsWhatAPersonWrote) {
  const TFuzzyRuleSet rules = TRuleFile::LoadRules(kRuleFile);
  const std::string text = Written(rules);
  EXPECT_EQ(text.substr(text.find("[RuleList]")), R"([RuleList]

if <Wind is Light 1> or (<Sea is not Rough 0.5> and not (<Sea not 2.5> or <Sea 1>))
  then <Sail is Full 0.1> and <Sail is not Reefed 1>

if <Wind is Gale 100>
  then <Sail is Reefed 0.123457>

[~RuleList]

[~FuzzyRules]
)");
  EXPECT_EQ(text.substr(0, text.find("\n\n[MFListInfo")),
            "[FormatVersion = 1.0]\n\n[FuzzyRules]\n[RuleType = handmade]\n\n[MFList]");

  EXPECT_EQ(Written(ReadRules(text)), text);
}

// A text that breaks off anywhere is an error, unless only blanks are missing.
TEST(RuleFile, SurvivesTruncation) {
  const auto breaks = [](const std::string& text, auto read) {
    for (std::size_t size = 0; size + 3 < text.size(); ++size) {
      EXPECT_NE(Failure([&] { read(text.substr(0, size)); }), "none") << size;
    }
  };
  breaks(Written(TRuleFile::LoadRules(kRuleFile)), ReadRules);
  breaks(Written(TLabelFile::LoadLabels(kLabelFile)), ReadLabels);
}

TEST(RuleFile, RefusesToWriteWhatHasNoName) {
  const auto write = [](TRuleAtom antecedent, TRuleAtom consequence) {
    TMFSetList inputs = Variables();
    inputs.SetMFSet(1, std::make_unique<TBasicMFSet>("t", std::nullopt, 1, 0, 1));
    TRule rule{antecedent, {}};
    rule.consequences.Append(consequence);
    TRuleList rules("test");
    rules.Append(std::move(rule));
    return Failure([&] { Written({std::move(inputs), std::move(rules), Variables()}); });
  };
  const char* kNoName = "Atom without a name Bad Rule Set TRuleFile::SaveRules";
  EXPECT_EQ(write({0, 1}, {1, 0}), "none");
  EXPECT_EQ(write({1, -1}, {1, 0}), kNoName);
  EXPECT_EQ(write({0, 3}, {1, 0}), kNoName);
  EXPECT_EQ(write({3, 0}, {1, 0}), "Invalid MF set number Bad Parameter TMFSetList::GetMFSet");
  EXPECT_EQ(write({0, 1, NAN}, {1, 0}),
            "Degree is not a finite number Bad Rule Set TRuleFile::SaveRules");
}

TEST(RuleFile, WritesRulesThatSayNothing) {
  TRuleList rules("test");
  rules.Append({std::make_unique<TRuleExpression>("and"), {}});
  const std::string text = Written({Variables(), std::move(rules), Variables()});
  EXPECT_NE(text.find("if NULL\n  then NULL\n"), std::string::npos) << text;
}

TEST(NetLabel, NamesVariablesAndTerms) {
  EXPECT_EQ(Written(MakeDefaultLabels({3, 2}, {2})), kDefaultLabels);
  const TNetLabel plain = MakeDefaultLabels(std::vector<int>(27), {0});
  EXPECT_EQ(plain.GetInputName(26), "InputBA");
  EXPECT_EQ(plain.NumConditions() + plain.NumActions(), 0);
  EXPECT_EQ(LetterCode(25) + LetterCode(11881375) + LetterCode(11881376), "ZZZZZZA");
}

TEST(LabelFile, ReadsWhatAPersonWrote) {
  const TNetLabel labels = TLabelFile::LoadLabels(kLabelFile);
  EXPECT_EQ(labels.InputMF(), (std::vector<int>{3, 0}));
  EXPECT_EQ(labels.GetConditionName(2), "gale");
  EXPECT_FALSE(labels.GetConditionName(1));

  EXPECT_EQ(Written(ReadLabels(Written(labels))), Written(labels));
  EXPECT_EQ(Written(ReadLabels(kDefaultLabels)), kDefaultLabels);
}

TEST(LabelFile, RefusesFaultyText) {
  ExpectFailures(kDefaultLabels,
                 {{"Inputs = 2", "Inputs = 3", "[Input = <integer>] expected (f, line 9)"},
                  {"Inputs = 2", "Inputs = 999999999",
                   "Inputs = 999999999 is more than the file holds (f, line 5)"},
                  {"Input=1 MF", "Input=2 MF", "Input number out of bounds (f, line 8)"},
                  {"Input=1 MF", "Input=0 MF", "Input given twice (f, line 8)"},
                  {"MF=3", "MF=-1", "MF = -1 is negative (f, line 7)"},
                  {"[Input=0 MF=3 ]\n[Input=1 MF=2 ]", "[Input=0 MF=400 ][Input=1 MF=400]",
                   "more membership functions than the file holds (f, line 8)"},
                  {"Label=InputA", "Name=InputA", "[Label = <string>] expectedName (f, line 19)"},
                  {"Action=1", "Action=-9999999999",
                   "Action number out of bounds Bad Parameter TNetLabel::SetActionName"}},
                 ReadLabels);
}

}  // namespace
}  // namespace kiln
