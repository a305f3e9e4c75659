#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "KQmessage/TKQstructure.h"
#include "Tarn/RuleExtraction/NetworkLabels.h"
#include "Tarn/RuleExtraction/TNetRule.h"

namespace kiln::commands {

namespace {

// How rules are to be read from a network.
TKQstructure ExtractionParams(const TCommandLine& line) {
  TKQstructure params("Params");
  for (const char* const threshold : {"ThresholdIn", "ThresholdOut"}) {
    const TReading<double> reading = line.Double(threshold);
    if (reading.code == TReadCode::kRead) params.SetDouble(threshold, reading.value);
  }
  const TReading<std::string_view> method = line.Word("method");
  if (method.code == TReadCode::kRead) params.SetString("method", std::string(method.value));
  return params;
}

// The labels that the line names; null where it names none.
std::shared_ptr<const TNetLabel> NamedLabels(const TInterpreter& interpreter,
                                             const TCommandLine& line) {
  const TReading<std::string_view> alias = line.Word("labels");
  if (alias.code != TReadCode::kRead) return nullptr;
  return RequiredObject<TNetLabel>(interpreter, alias.value, " is not of type TarnLabel");
}

}  // namespace

TAnswer LabelTarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto network = RequiredObject<TTarn>(interpreter, name, " is not of type Tarn");
  const std::string_view labels = RequiredNewAlias(interpreter, line, "labels");
  interpreter.Insert({labels, std::make_unique<TNetLabel>(MakeDefaultLabels(*network))});
  return kDone;
}

TAnswer RETarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto network = RequiredObject<TTarn>(interpreter, name, " is not type Tarn");
  const std::string_view rules = RequiredNewAlias(interpreter, line, "rules");
  const std::shared_ptr<const TNetLabel> labels = NamedLabels(interpreter, line);
  interpreter.Insert({rules, std::make_unique<TFuzzyRuleSet>(TNetRule::RETarn(
                                 *network, ExtractionParams(line), labels.get()))});
  return kDone;
}

TAnswer RITarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "rules");
  const auto rules = RequiredObject<TFuzzyRuleSet>(interpreter, name, " is not of type FuzzyRules");
  const std::string_view network = RequiredNewAlias(interpreter, line, "network");
  interpreter.Insert({network, TNetRule::RITarn(*rules)});
  return kDone;
}

}  // namespace kiln::commands
