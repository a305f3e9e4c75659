#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int LabelTarn(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view network = RequiredAlias(line, "network");
  RequiredKind<TTarn>(RequiredEntry(interpreter, network), network, " is not of type Tarn");
  RequiredNewAlias(interpreter, line, "labels");
  NotYet("Labels");
}

int RETarn(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view network = RequiredAlias(line, "network");
  RequiredKind<TTarn>(RequiredEntry(interpreter, network), network, " is not type Tarn");
  RequiredNewAlias(interpreter, line, "rules");
  NotYet("Fuzzy rules");
}

int RITarn(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view rules = RequiredAlias(line, "rules");
  RequiredKind<TFuzzyRuleSet>(RequiredEntry(interpreter, rules), rules,
                              " is not of type FuzzyRules");
  RequiredNewAlias(interpreter, line, "network");
  NotYet("Tarn networks");
}

}  // namespace kiln::commands
