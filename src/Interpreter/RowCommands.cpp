#include "DataObject/Data.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

constexpr char kBadArray[] = "bad array format";

// The values of a side of the new row, one a column; none when the side is left out.
std::vector<double> SideValues(const TCommandLine& line, std::string_view tag, int columns) {
  if (!line.Contains(tag)) return {};
  std::vector<double> values = Required(line.Doubles(tag), kBadArray);
  if (std::ssize(values) != columns) Fail(kBadArray);
  return values;
}

// One weight a label; 1 where none are given.
std::vector<double> LabelWeights(const TCommandLine& line, std::size_t labels) {
  if (!line.Contains("labelweights")) return std::vector<double>(labels, 1.0);
  std::vector<double> weights = Required(line.Doubles("labelweights"), kBadArray);
  if (weights.size() != labels) Fail(kBadArray);
  return weights;
}

// The labels of the new row. Their names must be such that a data file can hold them.
LabelList RowLabels(const TCommandLine& line) {
  std::vector<std::string_view> names;
  if (line.Contains("labels")) names = Required(line.Words("labels"), kBadArray);
  const std::vector<double> weights = LabelWeights(line, names.size());
  LabelList labels;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string_view name = TrimBlanks(names[i]);
    if (!FileTools::IsWord(name)) Fail(kBadArray);
    labels.Append(name, weights[i]);
  }
  return labels;
}

// The data set that "resetdata" and "purgedata" name.
std::shared_ptr<Data> NamedSet(const TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  return RequiredObject<Data>(interpreter, alias, " is not of type Data");
}

}  // namespace

TAnswer Append(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const TRegistryNode* node = interpreter.Find(alias);
  if (!node) Fail("object ", alias, " does not exist");
  const auto set = RequiredObject<Data>(*node, alias, " is not of type Data");
  const std::vector<double> inputs = SideValues(line, "inputs", set->Inputs());
  const std::vector<double> outputs = SideValues(line, "outputs", set->Outputs());
  const LabelList labels = RowLabels(line);
  if (set->Rows() == 0) Fail(alias, " has no room for rows");
  set->AddRow(inputs, outputs, &labels);
  return kDone;
}

TAnswer ResetData(TInterpreter& interpreter, const TCommandLine& line) {
  NamedSet(interpreter, line)->ResetCursor();
  return kDone;
}

TAnswer PurgeData(TInterpreter& interpreter, const TCommandLine& line) {
  NamedSet(interpreter, line)->Clear();
  return kDone;
}

}  // namespace kiln::commands
