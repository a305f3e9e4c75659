#include "DataObject/Data.h"
#include "Export/CFile.h"
#include "Export/FclFile.h"
#include "FileHandler/CsvFile.h"
#include "FileHandler/Filer.h"
#include "FileHandler/NetworkFile.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "RuleObject/TLabelFile.h"
#include "RuleObject/TRuleFile.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// The object that "save" names.
const TRegistryNode& SavedEntry(const TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode* node = interpreter.Find(RequiredAlias(line, "alias"));
  if (!node) Fail("object not found");
  return *node;
}

// The alias that "load" gives to what it reads.
std::string_view LoadedAlias(const TInterpreter& interpreter, const TCommandLine& line,
                             std::string_view no_tag) {
  const std::string_view alias = RequiredAlias(line, "alias", no_tag);
  if (interpreter.Exists(alias)) Fail("alias already exists");
  return alias;
}

std::string SavedPath(const TCommandLine& line) {
  return RequiredPath(line, "cannot find tag filename or bad format");
}

// Calls write(path).
template <typename TWrite>
void SaveTo(const std::string& path, TWrite write) {
  try {
    write(path);
  } catch (const FileTools::SaveError& failure) {
    Fail(failure.Message());
  }
}

// What read(path) returns. `cannot_open` stands before the path of a file that cannot be opened.
template <typename TRead>
auto LoadFrom(const std::string& path, std::string_view cannot_open, TRead read) {
  try {
    return read(path);
  } catch (const FileTools::OpenError&) {
    Fail(cannot_open, path);
  }
}

TAnswer SaveNetwork(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode* node = interpreter.Find(Required(line.Word("alias"), "alias tag not found"));
  if (!node) Fail("object not found");
  const std::string path = RequiredPath(line, "filename tag not found");
  const auto network = AsNetwork(*node);
  if (!network) Fail("object not an ANN type");
  SaveTo(path, [&](const std::string& to) { NetworkFiler::SaveNetwork(to, *network); });
  return kDone;
}

TAnswer SaveData(TInterpreter& interpreter, const TCommandLine& line) {
  const auto set = SavedEntry(interpreter, line).As<Data>();
  if (!set) Fail("object not type data");
  SaveTo(SavedPath(line), [&](const std::string& path) { Filer::Save(path, set.get()); });
  return kDone;
}

TAnswer SaveCsv(TInterpreter& interpreter, const TCommandLine& line) {
  const auto set = SavedEntry(interpreter, line).As<Data>();
  if (!set) Fail("object not type data");
  SaveTo(SavedPath(line), [&](const std::string& path) { CsvFile::Save(path, *set); });
  return kDone;
}

TAnswer SaveTarnLabels(TInterpreter& interpreter, const TCommandLine& line) {
  const auto labels = SavedEntry(interpreter, line).As<TNetLabel>();
  if (!labels) Fail("object not type data");  // frozen in the words for data
  SaveTo(SavedPath(line), [&](const std::string& path) { TLabelFile::SaveLabels(path, *labels); });
  return kDone;
}

TAnswer SaveFuzzyRules(TInterpreter& interpreter, const TCommandLine& line) {
  const auto rules = SavedEntry(interpreter, line).As<TFuzzyRuleSet>();
  if (!rules) Fail("object not type FuzzyRules");
  SaveTo(SavedPath(line), [&](const std::string& path) { TRuleFile::SaveRules(path, *rules); });
  return kDone;
}

// The names of the columns of the data set that the line names; none where it names none.
ColumnNames NamedColumns(const TInterpreter& interpreter, const TCommandLine& line,
                         const TBasicNetwork& network) {
  if (line.Word("data").code != TReadCode::kRead) return {};
  const std::string_view alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, alias, " is not of type Data");
  ColumnNames names = set->Names();
  if (names.Inputs.size() != network.NumInputs()) names.Inputs.clear();
  if (names.Outputs.size() != network.NumOutputs()) names.Outputs.clear();
  return names;
}

TAnswer SaveC(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const auto network = AsNetwork(SavedEntry(interpreter, line));
  if (!network) Fail("object not an ANN type");
  const std::string to = SavedPath(line);
  const ColumnNames names = NamedColumns(interpreter, line, *network);
  SaveTo(to, [&](const std::string& path) { CFile::Save(path, alias, *network, names); });
  return kDone;
}

TAnswer SaveFcl(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const auto rules = SavedEntry(interpreter, line).As<TFuzzyRuleSet>();
  if (!rules) Fail("object not type FuzzyRules");
  FclFile::TLeftOut left_out;
  SaveTo(SavedPath(line),
         [&](const std::string& path) { left_out = FclFile::Save(path, alias, *rules); });
  if (left_out.degrees == 0 && left_out.consequences == 0) return kDone;
  return "left out degrees " + std::to_string(left_out.degrees) + " negated consequences " +
         std::to_string(left_out.consequences);
}

TAnswer LoadNetwork(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find alias tag");
  const std::string path = RequiredPath(line, "unable to find filename tag");
  InsertNetwork(interpreter, alias, NetworkFiler::LoadNetwork(path));
  return kDone;
}

TAnswer LoadData(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find tag alias");
  const std::string path = RequiredPath(line, "tag filename not found");
  auto sets = LoadFrom(path, "Unable to open data file ", Filer::Load);
  interpreter.Insert({alias, std::move(sets.expected)});
  return kDone;
}

// The names in a list that may be left out.
std::vector<std::string> NamesIn(const TCommandLine& line, std::string_view tag) {
  std::vector<std::string> names;
  if (line.Word(tag).code != TReadCode::kRead) return names;
  for (const std::string_view name : Required(line.Words(tag), "error parsing array")) {
    names.emplace_back(TrimBlanks(name));
  }
  return names;
}

CsvFile::Options CsvOptions(const TCommandLine& line) {
  CsvFile::Options options;
  if (line.Word("header").code == TReadCode::kRead)
    options.header = RequiredBoolean(line, "header");
  options.outputs = NamesIn(line, "outputs");
  options.labels = NamesIn(line, "labels");
  options.ignore = NamesIn(line, "ignore");
  options.words = NamesIn(line, "words");
  const std::string_view missing = Optional(line.Word("missing"), std::string_view());
  options.skip_missing = EqualNoCase(missing, "skip");
  if (!missing.empty() && !options.skip_missing) Fail("bad argument to tag missing");
  return options;
}

TAnswer LoadCsv(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find tag alias");
  const std::string path = RequiredPath(line, "tag filename not found");
  const CsvFile::Options options = CsvOptions(line);
  auto table = LoadFrom(path, "Unable to open data file ",
                        [&](const std::string& from) { return CsvFile::Load(from, options); });
  std::string answer = "rows " + std::to_string(table.set->DataRows()) + " inputs " +
                       std::to_string(table.set->Inputs()) + " outputs " +
                       std::to_string(table.set->Outputs()) + " header ";
  answer += AnswerSwitch(table.has_header);
  if (table.skipped > 0) answer += " skipped " + std::to_string(table.skipped);
  interpreter.Insert({alias, std::move(table.set)});
  return answer;
}

TAnswer LoadTarnLabels(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find tag alias");
  const std::string path = RequiredPath(line, "tag filename not found");
  auto labels = LoadFrom(path, "Unable to open label file ",
                         [](const std::string& from) { return TLabelFile::LoadLabels(from); });
  interpreter.Insert({alias, std::make_unique<TNetLabel>(std::move(labels))});
  return kDone;
}

TAnswer LoadFuzzyRules(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find tag alias");
  const std::string path = RequiredPath(line, "tag filename not found");
  auto rules = LoadFrom(path, "Unable to open fuzzy rules file ",
                        [](const std::string& from) { return TRuleFile::LoadRules(from); });
  interpreter.Insert({alias, std::make_unique<TFuzzyRuleSet>(std::move(rules))});
  return kDone;
}

constexpr TTag kToTag = {"filename", kPath, "the file to write"};
constexpr TTag kFromTag = {"filename", kPath, "the file to read"};
constexpr TTag kNewTag = {"alias", kNewAlias, "the name for what is read"};

constexpr TTag kSavedNetworkTags[] = {
    TTag{"alias", kAlias, "a network of any kind"}.Of("MLP Tarn Kohonen"), kToTag};
constexpr TTag kSavedCTags[] = {
    kSavedNetworkTags[0], kToTag,
    TTag{"data", kAlias, "a set whose columns have the names of inputs and outputs"}.Of("Data").Or(
        "they have none")};
constexpr TTag kSavedDataTags[] = {TTag{"alias", kAlias, "a data set"}.Of("Data"), kToTag};
constexpr TTag kSavedLabelsTags[] = {TTag{"alias", kAlias, "labels"}.Of("TarnLabels"), kToTag};
constexpr TTag kSavedRulesTags[] = {TTag{"alias", kAlias, "rules"}.Of("FuzzyRules"), kToTag};
constexpr TTag kLoadedTags[] = {kNewTag, kFromTag};
constexpr char kNone[] = "none";
constexpr TTag kTableTags[] = {
    kNewTag,
    kFromTag,
    TTag{"header", kBoolean, "whether the first line has the names of the columns"}.Or(
        "on where a cell of that line is no number"),
    TTag{"outputs", kWords, "the columns that are outputs, by name or number"}.Or(kNone),
    TTag{"labels", kWords, "the columns that label the rows"}.Or(kNone),
    TTag{"ignore", kWords, "columns that are left out"}.Or(kNone),
    TTag{"words", kWords, "columns of numbers that are one 0/1 column for each"}.Or(kNone),
    TTag{"missing", kChoice, "what becomes of a row with a cell that says nothing"}.Of("skip").Or(
        "it is an error"),
};

// Whatever kind of network the word says, any network is written and read.
constexpr TForm kSavers[] = {
    {"Data", "writes a data set to a file", "save Data alias d filename (d.dat)", kSavedDataTags,
     SaveData},
    {"MLP", "writes a network to a file", "save MLP alias net filename (net.net)",
     kSavedNetworkTags, SaveNetwork},
    {"Tarn", "writes a network to a file", "save Tarn alias fuzzy filename (fuzzy.net)",
     kSavedNetworkTags, SaveNetwork},
    {"Kohonen", "writes a network to a file", "save Kohonen alias k filename (k.net)",
     kSavedNetworkTags, SaveNetwork},
    {"TarnLabels", "writes labels to a file", "save TarnLabels alias words filename (wind.labels)",
     kSavedLabelsTags, SaveTarnLabels},
    {"FuzzyRules", "writes rules to a file", "save FuzzyRules alias found filename (wind.rules)",
     kSavedRulesTags, SaveFuzzyRules},
    {"CSV", "writes a data set as a table with commas", "save CSV alias d filename (d.csv)",
     kSavedDataTags, SaveCsv},
    {"C", "writes a network as a function in C", "save C alias net filename (net.c) data d",
     kSavedCTags, SaveC},
    {"FCL", "writes rules in the fuzzy control language",
     "save FCL alias found filename (wind.fcl)", kSavedRulesTags, SaveFcl},
};

constexpr TForm kLoaders[] = {
    {"Data", "reads a data set from a file", "load Data alias d filename (d.dat)", kLoadedTags,
     LoadData},
    {"CSV", "reads a table with commas, semicolons or tabs",
     "load CSV alias new filename (d.csv) outputs {output0} labels {label}", kTableTags, LoadCsv},
    {"MLP", "reads a network from a file", "load MLP alias net filename (net.net)", kLoadedTags,
     LoadNetwork},
    {"Tarn", "reads a network from a file", "load Tarn alias fuzzy filename (fuzzy.net)",
     kLoadedTags, LoadNetwork},
    {"Kohonen", "reads a network from a file", "load Kohonen alias k filename (k.net)", kLoadedTags,
     LoadNetwork},
    {"TarnLabels", "reads labels from a file", "load TarnLabels alias words filename (wind.labels)",
     kLoadedTags, LoadTarnLabels},
    {"FuzzyRules", "reads rules from a file", "load FuzzyRules alias found filename (wind.rules)",
     kLoadedTags, LoadFuzzyRules},
};

constexpr char kUnknown[] = "unknown object type";

constexpr TCommand kCommands[] = {
    {"save", "writes an object to a file", kSavers, FormByWord, kUnknown},
    {"load", "reads an object from a file", kLoaders, FormByWord, kUnknown},
};

}  // namespace

const TFamily kFiles = {"files", kCommands};

}  // namespace kiln::commands
