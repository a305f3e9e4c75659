#include <algorithm>

#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/Usage.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// The network of an entry; null for other objects and for Kohonen maps, which are not copied.
std::shared_ptr<TBasicNetwork> CopyableNetwork(const TRegistryNode& node) {
  return node.As<TKohonenNetwork>() ? nullptr : AsNetwork(node);
}

TAnswer Help(TInterpreter& /*interpreter*/, const TCommandLine& line) {
  const TCommandLine topic(line.Arguments());
  const std::string_view word = topic.CommandWord();
  if (word.empty()) return Overview();
  if (HasWord("quit exit !!", word) || word.starts_with('@')) return std::string(kAtThePrompt);
  const TCommand* const command = FindCommand(word);
  if (!command) Fail("no help for ", word);
  const std::string_view selector = Selector(topic, word);
  if (selector.empty()) return Describe(*command);
  const auto is_meant = [selector](const TForm& form) {
    return EqualNoCase(form.word, selector) || HasWord(form.kinds, selector);
  };
  const auto form = std::ranges::find_if(command->forms, is_meant);
  if (form == command->forms.end()) Fail("no help for ", word, " ", selector);
  return Describe(*command, *form);
}

TAnswer StartLog(TInterpreter& interpreter, const TCommandLine& line) {
  // The spelling of the message is frozen: programs compare answers.
  interpreter.StartTranscript(RequiredPath(line, "filename not spcified or bad format"));
  return kDone;
}

TAnswer StopLog(TInterpreter& interpreter, const TCommandLine& /*line*/) {
  interpreter.StopTranscript();
  return kDone;
}

TAnswer Run(TInterpreter& interpreter, const TCommandLine& line) {
  return interpreter.RunScript(RequiredPath(line, "tag filename not found"));
}

TAnswer Copy(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& source = RequiredEntry(interpreter, RequiredAlias(line, "source"));
  const auto set = source.As<Data>();
  const auto network = CopyableNetwork(source);
  if (!set && !network) Fail("cannot copy this type of object");
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  if (set) {
    interpreter.Insert({destination, set->Clone()});
  } else {
    InsertNetwork(interpreter, destination, network->Clone());
  }
  return kDone;
}

TAnswer Destroy(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = Selector(line, "destroy");
  RequiredEntry(interpreter, alias);
  interpreter.Remove(alias);
  return kDone;
}

TAnswer Purge(TInterpreter& interpreter, const TCommandLine& /*line*/) {
  interpreter.Purge();
  return kDone;
}

// "start" and "stop" count wherever they stand.
const TForm& StartOrStop(const TCommand& command, const TInterpreter& /*interpreter*/,
                         const TCommandLine& line) {
  for (const TForm& form : command.forms) {
    if (line.Contains(form.word)) return form;
  }
  Fail(command.unknown);
}

constexpr TTag kHelpTags[] = {
    TTag{"help", kPhrase, "a command, and a form or kind of object: help plot MLP"}.Or(
        "all commands"),
};
constexpr TForm kHelp[] = {
    {"", "tells how commands are typed", "help create MLP", kHelpTags, Help},
};

constexpr TTag kLogTags[] = {{"filename", kPath, "the file, which is overwritten"}};
constexpr TForm kLog[] = {
    {"start", "goes on writing commands and answers to a file", "log start filename (day.log)",
     kLogTags, StartLog},
    {"stop", "closes that file", "log stop", {}, StopLog},
};

constexpr TTag kRunTags[] = {{"filename", kPath, "a file with a command in each line"}};
constexpr TForm kRun[] = {
    {"", "carries out the commands in a file, up to the first that fails",
     "run filename (rain.kiln)", kRunTags, Run},
};

constexpr TTag kCopyTags[] = {
    TTag{"source", kAlias, "what to copy"}.Of("Data MLP Tarn"),
    {"destination", kNewAlias, "the name of the copy"},
};
constexpr TForm kCopy[] = {
    {"", "copies a data set, a perceptron or a fuzzy network", "copy source net destination net2",
     kCopyTags, Copy},
};

constexpr TTag kDestroyTags[] = {{"destroy", kAlias, "what is to go"}};
constexpr TForm kDestroy[] = {
    {"", "destroys an object", "destroy net", kDestroyTags, Destroy},
};

constexpr TForm kPurge[] = {{"", "destroys all objects", "purge", {}, Purge}};

constexpr TCommand kCommands[] = {
    {"help", "tells how commands are typed", kHelp, FormByWord},
    {"log", "keeps a transcript of the session", kLog, StartOrStop, "must specify start or stop"},
    {"run", "carries out the commands in a file", kRun, FormByWord},
    {"copy", "copies an object", kCopy, FormByWord},
    {"destroy", "destroys an object", kDestroy, FormByWord},
    {"purge", "destroys all objects", kPurge, FormByWord},
};

}  // namespace

const TFamily kSession = {"session", kCommands};

}  // namespace kiln::commands
