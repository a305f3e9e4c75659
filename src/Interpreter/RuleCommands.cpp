#include <cmath>
#include <optional>

#include "DataObject/Data.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "KQmessage/TKQstructure.h"
#include "Shared/NumberFormat.h"
#include "Shared/NumberScan.h"
#include "Shared/Text.h"
#include "Tarn/RuleExtraction/NetworkLabels.h"
#include "Tarn/RuleExtraction/TNetRule.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// How rules are to be read from a network.
TKQstructure ExtractionParams(const TCommandLine& line) {
  TKQstructure params("Params");
  for (const char* const threshold : {"threshold", "ThresholdIn", "ThresholdOut"}) {
    const std::optional<double> number = line.NumberNoCase(threshold);
    if (!number) continue;
    if (!std::isfinite(*number)) Fail(threshold, " must be finite");
    params.SetDouble(threshold, *number);
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

// The data set on which the rules of `network` are to be simplified; null where the line names
// none.
std::shared_ptr<const Data> NamedSet(const TInterpreter& interpreter, const TCommandLine& line,
                                     std::string_view network_alias, const TTarn& network) {
  if (line.Word("data").code != TReadCode::kRead) return nullptr;
  const std::string_view alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, alias, " is not of type Data");
  RequireColumns(alias, set->Inputs(), "inputs", network_alias, network.NumInputs());
  RequireColumns(alias, set->Outputs(), "outputs", network_alias, network.NumOutputs());
  if (set->DataRows() == 0) Fail(alias, " has no rows");
  return set;
}

// What a missing tag leaves as it is.
void ReadTolerance(const TCommandLine& line, double& tolerance) {
  const TReading<std::string_view> word = line.Word("tolerance");
  if (word.code != TReadCode::kRead) return;
  const bool is_number = word.value.find_first_not_of("+-.0123456789eE") == word.value.npos;
  const double number = is_number ? ScanNumber(word.value).value_or(-1.0) : -1.0;
  if (!(number >= 0.0) || std::isinf(number)) Fail("tolerance must be a number of at least 0");
  tolerance = number;
}

TSimplification SimplificationOf(const TCommandLine& line, const Data& set) {
  TSimplification simplification = {.data = set};
  ReadTolerance(line, simplification.tolerance);
  if (line.Word("fit").code == TReadCode::kRead) simplification.fit = RequiredBoolean(line, "fit");
  if (line.Word("refit").code == TReadCode::kRead) {
    simplification.refit = RequiredBoolean(line, "refit");
  }
  simplification.rounds = AtLeast(1, Optional(line.Long("rounds"), std::int64_t{1}), "rounds");
  if (line.Word("atoms").code == TReadCode::kRead) {
    simplification.atoms = AtLeast(1, line.Long("atoms").value, "atoms");
  }
  return simplification;
}

// The words for terms behind a tag, which may be left out. Rules could not tell two apart that are
// the same in any case.
std::optional<std::vector<std::string>> TermsAt(const TCommandLine& line, std::string_view tag) {
  const auto words = line.WordsAt(tag);
  if (!words) return std::nullopt;
  std::vector<std::string> terms;
  for (const std::string_view term : *words) {
    const bool is_number = term.find_first_of("+-.0123456789") == 0;
    if (!FileTools::IsWord(term) || is_number) Fail(tag, " must be words");
    if (FindNoCase(terms, term)) Fail(tag, " must differ");
    terms.emplace_back(term);
  }
  return terms;
}

TAnswer LabelTarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto network = RequiredObject<TTarn>(interpreter, name, " is not of type Tarn");
  const std::string_view labels = RequiredNewAlias(interpreter, line, "labels");
  auto made = std::make_unique<TNetLabel>(MakeDefaultLabels(*network));
  if (line.Word("data").code == TReadCode::kRead) {
    const std::string_view alias = RequiredAlias(line, "data");
    NameVariables(*made, RequiredObject<Data>(interpreter, alias, " is not of type Data")->Names());
  }
  if (const auto terms = TermsAt(line, "terms")) {
    NameInputTerms(*made, *terms);
    NameOutputTerms(*made, *terms);
  }
  if (const auto terms = TermsAt(line, "outputterms")) NameOutputTerms(*made, *terms);
  interpreter.Insert({labels, std::move(made)});
  return kDone;
}

TAnswer RETarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto network = RequiredObject<TTarn>(interpreter, name, " is not type Tarn");
  const std::string_view rules = RequiredNewAlias(interpreter, line, "rules");
  const std::shared_ptr<const TNetLabel> labels = NamedLabels(interpreter, line);
  const std::shared_ptr<const Data> set = NamedSet(interpreter, line, name, *network);
  std::optional<TSimplification> simplification;
  if (set) {
    simplification.emplace(SimplificationOf(line, *set));
    simplification->observer = interpreter.Observer();
  }
  interpreter.Insert({rules, std::make_unique<TFuzzyRuleSet>(
                                 TNetRule::RETarn(*network, ExtractionParams(line), labels.get(),
                                                  simplification ? &*simplification : nullptr))});
  return kDone;
}

TAnswer RITarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "rules");
  const auto rules = RequiredObject<TFuzzyRuleSet>(interpreter, name, " is not of type FuzzyRules");
  const std::string_view network = RequiredNewAlias(interpreter, line, "network");
  interpreter.Insert({network, TNetRule::RITarn(*rules)});
  return kDone;
}

constexpr TTag kTarnTag = TTag{"network", kAlias, "a fuzzy network"}.Of("Tarn");

constexpr TTag kLabelTarnTags[] = {
    kTarnTag,
    {"labels", kNewAlias, "the name of the labels"},
    TTag{"data", kAlias, "a set whose columns have the names of the variables"}.Of("Data").Or(
        "InputA, ..., OutputA, ..."),
    TTag{"terms", kWords, "names for the terms of each variable that has as many"}.Or("A, B, ..."),
    TTag{"outputterms", kWords, "the same for outputs alone"}.Or("terms"),
};
constexpr TForm kLabelTarn[] = {
    {"", "names the variables of a fuzzy network and their terms",
     "labeltarn network fuzzy labels words data d terms {low, high}", kLabelTarnTags, LabelTarn},
};

constexpr TTag kRETarnTags[] = {
    kTarnTag,
    {"rules", kNewAlias, "the name of the rules"},
    TTag{"labels", kAlias, "names for variables and terms"}.Of("TarnLabels").Or("A, B, ..."),
    TTag{"threshold", kAnyCaseDouble, "both thresholds at once"}.Or("0"),
    TTag{"ThresholdIn", kAnyCaseDouble, "weights that conditions must exceed"}.Or("threshold"),
    TTag{"ThresholdOut", kAnyCaseDouble, "weights that conclusions must exceed"}.Or("threshold"),
    TTag{"method", kChoice, "how to choose conclusions"}
        .Of("RETarn NodeLocation Vireo2")
        .Or("RETarn"),
    TTag{"data", kAlias, "the set on which rules are made simpler"}.Of("Data").Or("as they are"),
    TTag{"tolerance", kDouble, "share of the error that simpler rules may add"}.Or("0.1"),
    TTag{"fit", kBoolean, "whether the degrees that are left are fitted"}.Or("on"),
    TTag{"rounds", kLong, "how often to simplify and fit"}.Or("1"),
    TTag{"refit", kBoolean, "whether to fit first, and after each part that goes"}.Or("off"),
    TTag{"atoms", kLong, "conditions that a rule may have"}.Or("any number"),
};
constexpr TForm kRETarn[] = {
    {"", "reads rules from a fuzzy network",
     "retarn network fuzzy labels words rules found data d tolerance 0.05", kRETarnTags, RETarn},
};

constexpr TTag kRITarnTags[] = {
    TTag{"rules", kAlias, "rules"}.Of("FuzzyRules"),
    {"network", kNewAlias, "the name of the fuzzy network"},
};
constexpr TForm kRITarn[] = {
    {"", "makes a fuzzy network of rules", "ritarn rules found network net2", kRITarnTags, RITarn},
};

constexpr TCommand kCommands[] = {
    {"labeltarn", "names the terms of a fuzzy network", kLabelTarn, FormByWord},
    {"retarn", "reads rules from a fuzzy network", kRETarn, FormByWord},
    {"ritarn", "makes a fuzzy network of rules", kRITarn, FormByWord},
};

}  // namespace

std::string RemarkOnRules(const TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode* const rules = interpreter.Find(line.Word("rules").value);
  const auto rule_set = rules ? rules->As<TFuzzyRuleSet>() : nullptr;
  if (!rule_set) return {};
  const int count = rule_set->Rules().Count();
  if (count > 0) return Counted(static_cast<std::size_t>(count), "rule");
  const TRegistryNode* const network = interpreter.Find(line.Word("network").value);
  const auto tarn = network ? network->As<TTarn>() : nullptr;
  if (!tarn) return {};
  const auto obstacle = TNetRule::ObstacleToRules(*tarn, ExtractionParams(line));
  if (!obstacle) return "0 rules";
  return "0 rules: there are some with " + std::string(obstacle->threshold) + " below " +
         FormatGeneral(obstacle->bound, 4);
}

const TFamily kRules = {"rules", kCommands};

}  // namespace kiln::commands
