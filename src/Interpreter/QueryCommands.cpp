#include <algorithm>
#include <cmath>
#include <sstream>

#include "DataObject/Data.h"
#include "DataTools/DataManip/TDataStats.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/QueryScore.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/Training/TTrainHistory.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "RuleObject/TNetLabel.h"
#include "Shared/TException.h"
#include "Shared/Text.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TTarn.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// The object whose alias stands behind the word of the query.
TSubject Subject(const TInterpreter& interpreter, const TCommandLine& line,
                 std::string_view query) {
  return RequiredSubject(interpreter, Selector(line, query));
}

TAnswer AliasExists(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "aliasexists", "cannot get argument");
  return std::string(AnswerBoolean(interpreter.Exists(alias)));
}

// For a Kohonen trainer the answer is frozen as the latest value that any command has answered.
TAnswer ClassOf(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& node = Subject(interpreter, line, "classof").node;
  if (node.As<TKohonenModule>()) return interpreter.GetResult();
  return std::string(node.Kind());
}

TAnswer Objects(TInterpreter& interpreter, const TCommandLine& /*line*/) {
  std::vector<std::string> names;
  for (const TRegistryNode& node : interpreter) {
    names.push_back(std::string(node.Alias()).append(" ").append(node.Kind()));
  }
  return AnswerArray(names);
}

std::string Structure(const Data& set) {
  std::ostringstream text;
  text << "inputs " << set.Inputs() << " outputs " << set.Outputs() << " rows " << set.Rows()
       << " datarows " << set.DataRows() << " labels " << AnswerSwitch(set.HasLabels());
  return text.str();
}

std::string Structure(const TTarn& network) {
  std::ostringstream text;
  text << "inputs " << network.NumInputs() << " condition " << AnswerArray(network.InputMF())
       << " rules " << network.NumRules() << " action " << AnswerArray(network.OutputMF())
       << " outputs " << network.NumOutputs();
  return text.str();
}

std::vector<const TBasicLayer*> HiddenLayers(const TMLPNetwork& network) {
  std::vector<const TBasicLayer*> layers;
  for (std::size_t i = 1; i < network.NumLayers(); ++i) {
    if (i == network.InputLayer() || i == network.OutputLayer()) continue;
    layers.push_back(&network.Layer(i));
  }
  return layers;
}

// The name of the function that the neurons of a layer share.
std::string FunctionOf(const TBasicLayer& layer) {
  const TActFunction function = layer.GetActivation();
  if (!function) return "mixed";
  return TFnRegistry::Instance().Lookup(function);
}

std::string Structure(const TMLPNetwork& network) {
  std::vector<int> hidden;
  std::vector<std::string> functions;
  for (const TBasicLayer* layer : HiddenLayers(network)) {
    hidden.push_back(static_cast<int>(layer->NumNeurons()));
    functions.push_back(FunctionOf(*layer));
  }
  functions.push_back(FunctionOf(network.Layer(network.OutputLayer())));
  std::ostringstream text;
  text << "layers " << network.NumLayers() - 1 << " inputs " << network.NumInputs() << " hidden "
       << AnswerArray(hidden) << " outputs " << network.NumOutputs() << " bias "
       << AnswerSwitch(network.Layer(0).IsBias());
  const auto sigmoids = std::ranges::count(functions, "sigmoid");
  if (sigmoids < std::ssize(functions)) text << " functions " << AnswerArray(functions);
  return text.str();
}

std::string Structure(const TKohonenNetwork& map) {
  const std::span<const int> sizes = map.Grid().Sizes();
  std::ostringstream text;
  text << "inputs " << map.NumInputs() << " dimensions " << sizes.size() << " mapdim "
       << AnswerArray(sizes);
  return text.str();
}

std::string Structure(const TNetLabel& labels) {
  std::ostringstream text;
  text << "inputs " << labels.NumInputs() << " outputs " << labels.NumOutputs();
  return text.str();
}

std::string Structure(const TFuzzyRuleSet& rules) {
  std::ostringstream text;
  text << "rules " << rules.Rules().Count() << " atoms " << rules.NumAtoms() << " inputs "
       << rules.Inputs().Count() << " outputs " << rules.Outputs().Count();
  return text.str();
}

TAnswer StructureOf(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& node = Subject(interpreter, line, "structureof").node;
  if (const auto set = node.As<Data>()) return Structure(*set);
  if (const auto tarn = node.As<TTarn>()) return Structure(*tarn);
  if (const auto perceptron = node.As<TMLPNetwork>()) return Structure(*perceptron);
  if (const auto map = node.As<TKohonenNetwork>()) return Structure(*map);
  if (const auto labels = node.As<TNetLabel>()) return Structure(*labels);
  if (const auto rules = node.As<TFuzzyRuleSet>()) return Structure(*rules);
  Fail("no structure for this type of object");
}

// Moves the cursor to the next row and describes that row. Where there is none, throws and leaves
// the cursor where it was.
std::string StepToNextRow(Data& set) {
  std::vector<double> inputs(static_cast<std::size_t>(set.Inputs()));
  std::vector<double> outputs(static_cast<std::size_t>(set.Outputs()));
  LabelList labels;
  const int before = set.Cursor();
  try {
    set.Next(inputs, outputs, &labels);
  } catch (const TException&) {
    set.SetCursor(before);
    throw;
  }
  std::vector<std::string> names;
  std::vector<double> weights;
  for (const LabelEntry& entry : labels.Entries()) {
    names.push_back(entry.Name);
    weights.push_back(entry.Value);
  }
  return "inputs " + AnswerArray(inputs) + " outputs " + AnswerArray(outputs) + " labels " +
         AnswerArray(names) + " labelweights " + AnswerArray(weights);
}

std::string ColumnList(const std::vector<std::string>& names, int columns, const char* side) {
  if (!names.empty()) return AnswerArray(names);
  std::vector<std::string> numbered;
  numbered.reserve(static_cast<std::size_t>(columns));
  for (int c = 0; c < columns; ++c) numbered.push_back(side + std::to_string(c));
  return AnswerArray(numbered);
}

TAnswer Columns(TInterpreter& interpreter, const TCommandLine& line) {
  const TSubject subject = Subject(interpreter, line, "columns");
  const auto set = RequiredObject<Data>(subject.node, subject.alias, " is not of type Data");
  return "inputs " + ColumnList(set->Names().Inputs, set->Inputs(), "input") + " outputs " +
         ColumnList(set->Names().Outputs, set->Outputs(), "output");
}

TAnswer GetNextRow(TInterpreter& interpreter, const TCommandLine& line) {
  const TSubject subject = Subject(interpreter, line, "getnextrow");
  const auto set = RequiredObject<Data>(subject.node, subject.alias, " is not of type Data");
  if (set->DataRows() == 0) Fail(subject.alias, " has no rows");
  return StepToNextRow(*set);
}

TAnswer HistoryOf(TInterpreter& interpreter, const TCommandLine& line) {
  const TSubject subject = Subject(interpreter, line, "history");
  const TTrainHistory* history = TrainingHistory(subject.node);
  if (!history) Fail(subject.alias, " is not a training object");
  std::vector<int> epochs;
  std::vector<double> training, validation;
  bool has_validation = false;
  for (const TTrainPoint& point : history->Points()) {
    epochs.push_back(point.epoch);
    training.push_back(point.training);
    validation.push_back(point.validation);
    has_validation = has_validation || !std::isnan(point.validation);
  }
  if (!has_validation) validation.clear();
  return "epochs " + AnswerArray(epochs) + " training " + AnswerArray(training) + " validation " +
         AnswerArray(validation);
}

struct TStatistic {
  std::string_view word;
  TDataStats::TFigures inputs;
  TDataStats::TFigures outputs;
};

constexpr TStatistic kStatistics[] = {
    {"max", &TDataStats::GetInputMaxima, &TDataStats::GetOutputMaxima},
    {"min", &TDataStats::GetInputMinima, &TDataStats::GetOutputMinima},
    {"average", &TDataStats::GetInputAverages, &TDataStats::GetOutputAverages},
};

const TStatistic& RequiredStatistic(const TCommandLine& line) {
  const TStatistic* statistic =
      FindNoCase(kStatistics, Selector(line, "getstats"), &TStatistic::word);
  if (!statistic) Fail("unknown statistics type");
  return *statistic;
}

TAnswer GetStats(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const auto stats = RequiredObject<TDataStats>(interpreter, alias, " is not of type DataStats");
  const TStatistic& statistic = RequiredStatistic(line);
  const bool inputs = RequiredBoolean(line, "inputs");
  const bool outputs = RequiredBoolean(line, "outputs");
  std::string answer;
  if (inputs) answer = "inputs " + AnswerArray((*stats.*statistic.inputs)());
  if (inputs && outputs) answer += ' ';
  if (outputs) answer += "outputs " + AnswerArray((*stats.*statistic.outputs)());
  return answer;
}

// The network whose rule nodes "query fired" shows: the one that "ritarn" would make of the rules
// that the line names or, where it names none, a copy of the network that it names.
std::unique_ptr<TTarn> NetworkOfRules(const TInterpreter& interpreter, const TCommandLine& line) {
  if (line.Word("rules").code == TReadCode::kRead) {
    const std::string_view alias = RequiredAlias(line, "rules");
    return TNetRule::RITarn(
        *RequiredObject<TFuzzyRuleSet>(interpreter, alias, " is not of type FuzzyRules"));
  }
  const std::string_view alias = RequiredAlias(line, "network");
  return std::make_unique<TTarn>(
      *RequiredObject<TTarn>(interpreter, alias, " is not of type Tarn"));
}

TAnswer Fired(TInterpreter& interpreter, const TCommandLine& line) {
  const std::unique_ptr<TTarn> network = NetworkOfRules(interpreter, line);
  const std::vector<double> inputs = Required(line.Doubles("inputs"), "tag inputs not found");
  if (inputs.size() != network->NumInputs()) {
    Fail("there are ", std::to_string(inputs.size()), " inputs but the network has ",
         std::to_string(network->NumInputs()));
  }
  for (const double input : inputs) {
    if (!std::isfinite(input)) Fail("inputs must be finite numbers");
  }
  std::vector<double> outputs(network->NumOutputs());
  network->RecallPattern(inputs, outputs);
  return AnswerArray(network->Layer(TTarn::kRuleLayer).Outputs());
}

constexpr TTag kAliasExistsTags[] = {{"aliasexists", kAlias, "the name"}};
constexpr TTag kClassOfTags[] = {{"classof", kAlias, "the object"}};
constexpr TTag kStructureOfTags[] = {
    TTag{"structureof", kAlias, "a data set, a network, labels or rules"}.Of(
        "Data MLP Tarn Kohonen TarnLabels FuzzyRules")};
constexpr TTag kGetNextRowTags[] = {TTag{"getnextrow", kAlias, "a data set"}.Of("Data")};
constexpr TTag kColumnsTags[] = {TTag{"columns", kAlias, "a data set"}.Of("Data")};
constexpr TTag kScoreTags[] = {
    TTag{"network", kAlias, "a network of any kind"}.Of("MLP Tarn Kohonen"),
    TTag{"data", kAlias, "the data set that it answers"}.Of("Data"),
};
constexpr TTag kConfusionTags[] = {
    TTag{"network", kAlias, "a network that tells classes"}.Of("MLP Tarn"),
    TTag{"data", kAlias, "a data set whose outputs are classes"}.Of("Data"),
};
constexpr TTag kHistoryTags[] = {
    TTag{"history", kAlias, "a trainer"}.Of("BP TarnBP TarnLWF MLPGA TarnGA KohonenTrainer")};
constexpr TTag kGetStatsTags[] = {
    TTag{"getstats", kChoice, "which figure of each column"}.Of("max min average"),
    TTag{"alias", kAlias, "statistics"}.Of("DataStats"),
    {"inputs", kBoolean, "whether to show the inputs"},
    {"outputs", kBoolean, "whether to show the outputs"},
};

constexpr TTag kFiredTags[] = {
    TTag{"network", kAlias, "a fuzzy network"}.Of("Tarn").Or("that of the rules"),
    TTag{"rules", kAlias, "rules"}.Of("FuzzyRules").Or("those of the network"),
    {"inputs", kDoubles, "a number for each input"},
};

constexpr TForm kQueries[] = {
    {"aliasexists", "whether there is an object of this name", "query aliasexists net",
     kAliasExistsTags, AliasExists},
    {"classof", "the kind of an object", "query classof net", kClassOfTags, ClassOf},
    {"objects", "all objects and their kinds", "query objects", {}, Objects},
    {"structureof", "the size of an object", "query structureof net", kStructureOfTags,
     StructureOf},
    {"getnextrow", "the next row of a data set", "query getnextrow d", kGetNextRowTags, GetNextRow},
    {"columns", "the names of the columns of a data set", "query columns d", kColumnsTags, Columns},
    {"score", "how well a network answers a data set", "query score network net data d", kScoreTags,
     Score},
    {"confusion", "which classes a network takes for which", "query confusion network net data d",
     kConfusionTags, Confusion},
    {"history", "the errors that a trainer has seen", "query history teacher", kHistoryTags,
     HistoryOf},
    {"getstats", "figures of the columns of a data set",
     "query getstats max alias s inputs on outputs on", kGetStatsTags, GetStats},
    {"fired", "how much each rule applies", "query fired rules found inputs {0.1, 0.5}", kFiredTags,
     Fired},
};

constexpr TCommand kCommands[] = {
    {"query", "tells something about an object", kQueries, FormByWord, "unknown query"},
};

}  // namespace

const TFamily kQuestions = {"questions", kCommands};

}  // namespace kiln::commands
