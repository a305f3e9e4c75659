#include "DataObject/Data.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

constexpr char kBadArray[] = "bad array format";

// The values of a side of the new row, one a column. Empty when the side is left out.
std::vector<double> SideValues(const TCommandLine& line, std::string_view tag, int columns) {
  if (!line.Contains(tag)) return {};
  std::vector<double> values = Required(line.Doubles(tag), kBadArray);
  if (std::ssize(values) != columns) Fail(kBadArray);
  return values;
}

// One weight a label. Without the tag every label weighs 1.
std::vector<double> LabelWeights(const TCommandLine& line, std::size_t labels) {
  if (!line.Contains("labelweights")) return std::vector<double>(labels, 1.0);
  std::vector<double> weights = Required(line.Doubles("labelweights"), kBadArray);
  if (weights.size() != labels) Fail(kBadArray);
  return weights;
}

// The labels of the new row. Each name must be one word of the file syntax, so that it can be
// saved.
LabelList RowLabels(const TCommandLine& line) {
  std::vector<std::string_view> names;
  if (line.Contains("labels")) names = Required(line.Words("labels"), kBadArray);
  const std::vector<double> weights = LabelWeights(line, names.size());
  std::vector<WeightedName> given;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string_view name = TrimBlanks(names[i]);
    if (!FileTools::IsWord(name)) Fail(kBadArray);
    given.push_back({name, weights[i]});
  }
  LabelList labels;
  labels.Append(given);
  return labels;
}

// The data set that "resetdata" and "purgedata" name.
std::shared_ptr<Data> NamedSet(const TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  return RequiredObject<Data>(interpreter, alias, " is not of type Data");
}

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

constexpr TTag kSetTag = TTag{"alias", kAlias, "the data set"}.Of("Data");

constexpr TTag kAppendTags[] = {
    kSetTag,
    TTag{"inputs", kDoubles, "a number for each column of inputs"}.Or("zeros"),
    TTag{"outputs", kDoubles, "a number for each column of outputs"}.Or("zeros"),
    TTag{"labels", kWords, "labels of the row, where the set has labels"}.Or("none"),
    TTag{"labelweights", kDoubles, "a weight for each label"}.Or("1 each"),
};
constexpr TForm kAppend[] = {
    {"", "adds a row to a data set; a full one drops its oldest row",
     "append alias d inputs {0.1, 0.5} labels {up, flat} labelweights {0.75, 1}", kAppendTags,
     Append},
};

constexpr TTag kSetTags[] = {kSetTag};
constexpr TForm kResetData[] = {
    {"", "has query getnextrow start again at the oldest row", "resetdata alias d", kSetTags,
     ResetData},
};
constexpr TForm kPurgeData[] = {
    {"", "takes all rows out of a data set", "purgedata alias d", kSetTags, PurgeData},
};

constexpr TCommand kCommands[] = {
    {"append", "adds a row to a data set", kAppend, FormByWord},
    {"resetdata", "starts again at the oldest row", kResetData, FormByWord},
    {"purgedata", "empties a data set", kPurgeData, FormByWord},
};

}  // namespace

const TFamily kRows = {"rows", kCommands};

}  // namespace kiln::commands
