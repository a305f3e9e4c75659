#include <string>
#include <utility>

#include "FileHandler/TFuzzyMFFiler.h"
#include "RuleObject/TRuleFile.h"
#include "Shared/TException.h"
#include "Shared/Text.h"

namespace kiln::TRuleFile {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

[[noreturn]] void Fail(const std::string& message) {
  throw TException(message, "Bad Rule File", "TRuleFile::LoadRules");
}

// Reads rules up to the end of their block.
class TRuleListReader {
 public:
  TRuleListReader(Reader& reader, const TMFSetList& inputs, const TMFSetList& outputs)
      : reader_(reader), tokens_(reader), inputs_(inputs), outputs_(outputs) {}

  void Read(TRuleList& rules) {
    Advance();
    while (IsWord("if")) {
      TRule rule;
      rule.antecedent = ReadAntecedent();
      ReadConsequences(rule.consequences);
      rules.Append(std::move(rule));
    }
    ExpectEndTag(item_, reader_);
  }

 private:
  static constexpr std::string_view kBlock = "RuleList";

  void Advance() { item_ = tokens_.NextItem(kBlock); }

  bool IsWord(std::string_view word) const {
    return item_.kind == ParseItem::kToken && EqualNoCase(item_.name, word);
  }

  // From behind the "if" to the "then", which is taken too.
  TRuleElement ReadAntecedent() {
    std::string_view pending;
    auto antecedent = LoadExpression(tokens_, pending, inputs_);
    if (!antecedent || !EqualNoCase(pending, "then")) Fail("Missing 'then'");
    return std::move(*antecedent);
  }

  // Leaves the item behind the last consequence.
  void ReadConsequences(TRuleConsequenceList& consequences) {
    Advance();
    if (!IsWord("<")) return;
    ReadConsequence(consequences);
    while (IsWord("and")) {
      Advance();
      if (!IsWord("<")) Fail("Consequence expected after 'and'");
      ReadConsequence(consequences);
    }
  }

  void ReadConsequence(TRuleConsequenceList& consequences) {
    consequences.Append(LoadAtom(reader_, outputs_));
    Advance();
  }

  Reader& reader_;
  TRuleTokens tokens_;
  const TMFSetList& inputs_;
  const TMFSetList& outputs_;
  ParseItem item_;
};

}  // namespace

TFuzzyRuleSet LoadRules(Reader& reader) {
  constexpr std::string_view kBlock = "FuzzyRules";
  ExpectStartTag(reader.ReadItem(""), reader, kBlock);
  TRuleList rules(std::string(ExpectString(reader.ReadItem(kBlock), reader, "RuleType")));
  TMFSetList inputs = TFuzzyMFFiler::LoadMFlist(reader, kBlock);
  TMFSetList outputs = TFuzzyMFFiler::LoadMFlist(reader, kBlock);
  ExpectStartTag(reader.ReadItem(kBlock), reader, "RuleList");
  TRuleListReader(reader, inputs, outputs).Read(rules);
  ExpectEndTag(reader.ReadItem(kBlock), reader);
  return {std::move(inputs), std::move(rules), std::move(outputs)};
}

TFuzzyRuleSet LoadRules(const std::string& path) {
  Reader reader = Reader::FromFile(path);
  return FileTools::ReadPlaced(reader, [](Reader& file) { return LoadRules(file); });
}

}  // namespace kiln::TRuleFile
