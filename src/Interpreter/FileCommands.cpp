#include "DataObject/Data.h"
#include "FileHandler/Filer.h"
#include "FileHandler/SafeFile.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

namespace {

// The object that "save" names.
const TRegistryNode& SavedEntry(const TInterpreter& interpreter, const CommandLine& line) {
  const TRegistryNode* node = interpreter.Find(RequiredAlias(line, "alias"));
  if (!node) Fail("object not found");
  return *node;
}

// The alias that "load" gives to what it reads.
std::string_view LoadedAlias(const TInterpreter& interpreter, const CommandLine& line,
                             std::string_view no_tag) {
  const std::string_view alias = RequiredAlias(line, "alias", no_tag);
  if (interpreter.Exists(alias)) Fail("alias already exists");
  return alias;
}

std::string SavedPath(const CommandLine& line) {
  return RequiredPath(line, "cannot find tag filename or bad format");
}

int SaveData(TInterpreter& interpreter, const CommandLine& line) {
  const auto set = SavedEntry(interpreter, line).As<Data>();
  if (!set) Fail("object not type data");
  const std::string path = SavedPath(line);
  try {
    Filer::Save(path, set.get());
  } catch (const FileTools::SaveError&) {
    Fail("cannot save to file ", path);
  }
  return kDone;
}

int SaveTarnLabels(TInterpreter& interpreter, const CommandLine& line) {
  // The same words as for data.
  if (!SavedEntry(interpreter, line).As<TNetLabel>()) Fail("object not type data");
  NotYet("Labels");
}

int SaveFuzzyRules(TInterpreter& interpreter, const CommandLine& line) {
  if (!SavedEntry(interpreter, line).As<TFuzzyRuleSet>()) Fail("object not type FuzzyRules");
  NotYet("Fuzzy rules");
}

int LoadData(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view alias = LoadedAlias(interpreter, line, "cannot find tag alias");
  const std::string path = RequiredPath(line, "tag filename not found");
  try {
    interpreter.Insert({alias, Filer::Load(path).expected});
  } catch (const FileTools::OpenError&) {
    Fail("Unable to open data file ", path);
  }
  return kDone;
}

int LoadTarnLabels(TInterpreter& interpreter, const CommandLine& line) {
  LoadedAlias(interpreter, line, "cannot find tag alias");
  RequiredPath(line, "tag filename not found");
  NotYet("Labels");
}

int LoadFuzzyRules(TInterpreter& interpreter, const CommandLine& line) {
  LoadedAlias(interpreter, line, "cannot find tag alias");
  RequiredPath(line, "tag filename not found");
  NotYet("Fuzzy rules");
}

constexpr TCommand kSavers[] = {
    {"Data", SaveData},
    {"TarnLabels", SaveTarnLabels},
    {"FuzzyRules", SaveFuzzyRules},
};

constexpr TCommand kLoaders[] = {
    {"Data", LoadData},
    {"TarnLabels", LoadTarnLabels},
    {"FuzzyRules", LoadFuzzyRules},
};

constexpr char kUnknown[] = "unknown object type";

}  // namespace

int Save(TInterpreter& interpreter, const CommandLine& line) {
  return Dispatch(kSavers, Selector(line, "save"), kUnknown, interpreter, line);
}

int Load(TInterpreter& interpreter, const CommandLine& line) {
  return Dispatch(kLoaders, Selector(line, "load"), kUnknown, interpreter, line);
}

}  // namespace kiln::commands
