#pragma once

#include <string>
#include <string_view>

namespace kiln {

class TFuzzyRuleSet;

// Rules in the fuzzy control language of IEC 61131-7, as one function block. Terms of inputs keep
// their shapes; those of outputs become the single values at their centres, and outputs centres of
// gravity of these, as in a Tarn. Minimum and maximum stand for "and" and "or". Names become
// identifiers that differ from each other.
namespace FclFile {

// What has no place in the language.
struct TLeftOut {
  int degrees = 0;       // other than 1, but for those of consequences that are between 0 and 1
  int consequences = 0;  // that are negated
};

// Writes the file; `name` is that of the function block. Throws TException for rules without
// conditions, atoms that name no term and values that are no numbers, FileTools::SaveError.
TLeftOut Save(const std::string& path, std::string_view name, const TFuzzyRuleSet& rules);

}  // namespace FclFile
}  // namespace kiln
