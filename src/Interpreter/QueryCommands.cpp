#include <iterator>
#include <sstream>

#include "DataObject/Data.h"
#include "Interpreter/Answers.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/TMLPNetwork.h"
#include "Shared/TException.h"
#include "Tarn/TTarn.h"

namespace kiln::commands {

namespace {

// What "query classof" calls each kind, in the order of the type tags. A Kohonen trainer has no
// name: the query leaves the result of the command before.
constexpr std::string_view kClassNames[] = {
    "Data", "Tarn",  "TarnBP",    "TarnLWF", "TarnGA",     "MLP",       "Kohonen",
    "BP",   "MLPGA", "DataStats", "",        "TarnLabels", "FuzzyRules"};
static_assert(std::size(kClassNames) == std::variant_size_v<TObject>);

// An object whose alias stands behind the word of the query.
struct TSubject {
  std::string_view alias;
  const TRegistryNode& node;
};

TSubject Subject(const TInterpreter& interpreter, const TCommandLine& line,
                 std::string_view query) {
  const std::string_view alias = Selector(line, query);
  RefuseReserved(alias);
  return {alias, RequiredEntry(interpreter, alias)};
}

int AliasExists(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "aliasexists", "cannot get argument");
  interpreter.SetResult(std::string(AnswerBoolean(interpreter.Exists(alias))));
  return kValue;
}

int ClassOf(TInterpreter& interpreter, const TCommandLine& line) {
  const int tag = Subject(interpreter, line, "classof").node.Type();
  const std::string_view name = kClassNames[static_cast<std::size_t>(tag) - 1];
  if (!name.empty()) interpreter.SetResult(std::string(name));
  return kValue;
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

std::string Structure(const TMLPNetwork& network) {
  std::vector<int> hidden;
  for (std::size_t i = 1; i < network.NumLayers(); ++i) {
    if (i == network.InputLayer() || i == network.OutputLayer()) continue;
    hidden.push_back(static_cast<int>(network.Layer(i).NumNeurons()));
  }
  std::ostringstream text;
  text << "layers " << network.NumLayers() - 1 << " inputs " << network.NumInputs() << " hidden "
       << AnswerArray(hidden) << " outputs " << network.NumOutputs() << " bias "
       << AnswerSwitch(network.Layer(0).NumNeurons() > 0);
  return text.str();
}

std::string Structure(const TKohonenNetwork& map) {
  const std::span<const int> sizes = map.Grid().Sizes();
  std::ostringstream text;
  text << "inputs " << map.NumInputs() << " dimensions " << sizes.size() << " mapdim "
       << AnswerArray(sizes);
  return text.str();
}

int StructureOf(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& node = Subject(interpreter, line, "structureof").node;
  if (const auto set = node.As<Data>()) {
    interpreter.SetResult(Structure(*set));
  } else if (const auto tarn = node.As<TTarn>()) {
    interpreter.SetResult(Structure(*tarn));
  } else if (const auto perceptron = node.As<TMLPNetwork>()) {
    interpreter.SetResult(Structure(*perceptron));
  } else if (const auto map = node.As<TKohonenNetwork>()) {
    interpreter.SetResult(Structure(*map));
  } else {
    Fail("no structure for this type of object");
  }
  return kValue;
}

// The row that the next step of the cursor leads to; the cursor stays when there is none.
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

int GetNextRow(TInterpreter& interpreter, const TCommandLine& line) {
  const TSubject subject = Subject(interpreter, line, "getnextrow");
  const auto set = RequiredObject<Data>(subject.node, subject.alias, " is not of type Data");
  if (set->DataRows() == 0) Fail(subject.alias, " has no rows");
  interpreter.SetResult(StepToNextRow(*set));
  return kValue;
}

constexpr TCommand kQueries[] = {
    {"aliasexists", AliasExists}, {"classof", ClassOf},   {"structureof", StructureOf},
    {"getnextrow", GetNextRow},   {"getstats", GetStats},
};

}  // namespace

int Query(TInterpreter& interpreter, const TCommandLine& line) {
  return Dispatch(kQueries, Selector(line, "query"), "unknown query", interpreter, line);
}

}  // namespace kiln::commands
