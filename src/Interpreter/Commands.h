#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "Interpreter/Answers.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

// Carries out a command or one form of it and returns its answer; failures are thrown. A handler
// checks its arguments in a fixed order, each failed check being a TCommandFailure, and changes
// nothing before all of them have passed.
using THandler = TAnswer (*)(TInterpreter& interpreter, const TCommandLine& line);

// The answer of a command that has no value to tell.
inline constexpr std::nullopt_t kDone = std::nullopt;

// A word and the handler that runs for it; words are compared ignoring case.
struct TCommand {
  std::string_view word;
  THandler handler;
};

// All commands, by the first word of the line.
std::span<const TCommand> Commands();

// Runs the handler of the first entry for `word`. Throws TCommandFailure with the message `unknown`
// when there is none.
TAnswer Dispatch(std::span<const TCommand> table, std::string_view word, std::string_view unknown,
                 TInterpreter& interpreter, const TCommandLine& line);

// The word behind the command word that selects one of its forms, empty when there is none.
std::string_view Selector(const TCommandLine& line, std::string_view command);

// Seeds the random numbers of a command: from the whole number behind the tag "seed" or, without
// one, from the clock.
void StartRandom(const TCommandLine& line);

// The handlers, by the first word of the command. Each stands in the file of its group.
namespace commands {

// SessionCommands.cpp: the session and the objects in it, whatever their kind
TAnswer Log(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Run(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Copy(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Destroy(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Purge(TInterpreter& interpreter, const TCommandLine& line);

// CreateCommands.cpp
TAnswer Create(TInterpreter& interpreter, const TCommandLine& line);

// FileCommands.cpp
TAnswer Save(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Load(TInterpreter& interpreter, const TCommandLine& line);

// QueryCommands.cpp
TAnswer Query(TInterpreter& interpreter, const TCommandLine& line);

// RowCommands.cpp: rows of one data set
TAnswer Append(TInterpreter& interpreter, const TCommandLine& line);
TAnswer ResetData(TInterpreter& interpreter, const TCommandLine& line);
TAnswer PurgeData(TInterpreter& interpreter, const TCommandLine& line);

// ManipulationCommands.cpp: new data sets out of others
TAnswer Shuffle(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Normalise(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Denormalise(TInterpreter& interpreter, const TCommandLine& line);

// TrainCommands.cpp
TAnswer Train(TInterpreter& interpreter, const TCommandLine& line);
TAnswer GetTrained(TInterpreter& interpreter, const TCommandLine& line);

// RecallCommands.cpp: what networks make of data
TAnswer Recall(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Map(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Label(TInterpreter& interpreter, const TCommandLine& line);

// RuleCommands.cpp: labels and rules of fuzzy networks
TAnswer LabelTarn(TInterpreter& interpreter, const TCommandLine& line);
TAnswer RETarn(TInterpreter& interpreter, const TCommandLine& line);
TAnswer RITarn(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Fired(TInterpreter& interpreter, const TCommandLine& line);  // a form of "query"

}  // namespace commands
}  // namespace kiln
