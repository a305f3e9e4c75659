#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "FileHandler/Syntax/ParseTools.h"
#include "FileHandler/Syntax/Writer.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "RuleObject/TRuleTokens.h"

// Rule files: the membership functions of the inputs and of the outputs, and the rules as text,
// "if <temp is high 1> and not <wind is strong 1> then <sail is small 0.8>".
// docs/file-formats.md describes them.
namespace kiln::TRuleFile {

// Expressions that are nested deeper are not read.
inline constexpr int kMaxDepth = 500;

// Writes a rule file. Throws TException for an atom whose variable or term does not exist or has
// no name, and for two inputs, two outputs or two terms of a variable that bear one name in any
// case: the file could not tell them apart. The second form also throws FileTools::SaveError;
// whatever it throws, what stood at `path` is left alone. REQUIRES: expressions are nested at most
// kMaxDepth deep.
void SaveRules(FileTools::Writer& out, const TFuzzyRuleSet& rule_set);
void SaveRules(const std::string& path, const TFuzzyRuleSet& rule_set);

// Reads a rule file. Throws TException of the category "Bad Rule File" for a fault in a rule,
// FileTools::Error and the failures of membership functions for the rest of the text. The second
// form also throws FileTools::OpenError. A rule without consequences cannot be read back: the word
// NULL ends the list.
TFuzzyRuleSet LoadRules(FileTools::Reader& reader);
TFuzzyRuleSet LoadRules(const std::string& path);

// Reads an antecedent over the variables `inputs`. It starts with the token `pending`, or with the
// next one where that is empty; afterwards `pending` is the token that ended it. Nothing when the
// text ends instead.
//
// A fault in the order of the tokens is the TException "Ill formed expression", numbered by the
// place that noticed it: (1) the antecedent does not start with an operand; (2) the token behind an
// atom, "not" or "("; (3) an operand is missing, (4) what stands behind the operand of "not" or
// "("; (5) the token behind "and" or "or"; (6) the token behind ")"; (7) what stands behind a right
// operand.
std::optional<TRuleElement> LoadExpression(TRuleTokens& tokens, std::string_view& pending,
                                           const TMFSetList& inputs);

// Reads an atom over the variables of `list`, from behind its "<" to its ">".
TRuleAtom LoadAtom(FileTools::Reader& reader, const TMFSetList& list);

}  // namespace kiln::TRuleFile
