#pragma once

#include <span>
#include <string_view>

#include "Interpreter/TCommandLine.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

// The codes that handlers return. Failures are thrown.
inline constexpr int kDone = 0;
inline constexpr int kValue = 1;  // the result message is the answer

// Carries out a command or one form of it. A handler checks its arguments in a fixed order, each
// failed check being a TCommandFailure, and changes nothing before all of them have passed.
using THandler = int (*)(TInterpreter& interpreter, const TCommandLine& line);

// A word and what it stands for; words are compared ignoring case.
struct TCommand {
  std::string_view word;
  THandler handler;
};

// Runs the first entry for `word`; fails with the message `unknown` when there is none.
int Dispatch(std::span<const TCommand> table, std::string_view word, std::string_view unknown,
             TInterpreter& interpreter, const TCommandLine& line);

// The word behind the command word that selects one of its forms, empty when there is none.
std::string_view Selector(const TCommandLine& line, std::string_view command);

// Starts the random numbers of a command: from the whole number behind the tag "seed" or, without
// one, from the clock.
void StartRandom(const TCommandLine& line);

namespace commands {

// SessionCommands.cpp
int Log(TInterpreter& interpreter, const TCommandLine& line);
int Run(TInterpreter& interpreter, const TCommandLine& line);
int Purge(TInterpreter& interpreter, const TCommandLine& line);

// CreateCommands.cpp
int Create(TInterpreter& interpreter, const TCommandLine& line);

// ObjectCommands.cpp
int Destroy(TInterpreter& interpreter, const TCommandLine& line);
int Copy(TInterpreter& interpreter, const TCommandLine& line);

// FileCommands.cpp
int Save(TInterpreter& interpreter, const TCommandLine& line);
int Load(TInterpreter& interpreter, const TCommandLine& line);

// QueryCommands.cpp
int Query(TInterpreter& interpreter, const TCommandLine& line);

// QueryStats.cpp, a form of "query"
int GetStats(TInterpreter& interpreter, const TCommandLine& line);

// RowCommands.cpp
int Append(TInterpreter& interpreter, const TCommandLine& line);
int ResetData(TInterpreter& interpreter, const TCommandLine& line);
int PurgeData(TInterpreter& interpreter, const TCommandLine& line);

// ManipulationCommands.cpp
int Shuffle(TInterpreter& interpreter, const TCommandLine& line);
int Normalise(TInterpreter& interpreter, const TCommandLine& line);
int Denormalise(TInterpreter& interpreter, const TCommandLine& line);

// TrainCommands.cpp
int Train(TInterpreter& interpreter, const TCommandLine& line);
int GetTrained(TInterpreter& interpreter, const TCommandLine& line);

// RecallCommands.cpp
int Recall(TInterpreter& interpreter, const TCommandLine& line);

// KohonenCommands.cpp
int Map(TInterpreter& interpreter, const TCommandLine& line);

// LabelCommand.cpp
int Label(TInterpreter& interpreter, const TCommandLine& line);

// RuleCommands.cpp
int LabelTarn(TInterpreter& interpreter, const TCommandLine& line);
int RETarn(TInterpreter& interpreter, const TCommandLine& line);
int RITarn(TInterpreter& interpreter, const TCommandLine& line);

}  // namespace commands
}  // namespace kiln
