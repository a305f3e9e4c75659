#pragma once

#include <optional>
#include <string_view>

#include "Interpreter/Answers.h"
#include "Interpreter/TCommand.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TInterpreter.h"

// What handlers share, and the families of commands.
namespace kiln {

// The answer of a command that has no value to tell.
inline constexpr std::nullopt_t kDone = std::nullopt;

// The word behind the command word that selects one of its forms, empty when there is none.
std::string_view Selector(const TCommandLine& line, std::string_view command);

// The tag of all commands that draw random numbers.
inline constexpr TTag kSeedTag =
    TTag{"seed", TValueKind::kSeed, "where the random numbers start"}.Or("the clock");

// Seeds the random numbers of a command: from the whole number behind the tag "seed" or, without
// one, from the clock.
void StartRandom(const TCommandLine& line);

// The rows of the table of commands. Each family stands in a file of its own, its handlers first
// and then its rows: to add a command, write both.
namespace commands {

extern const TFamily kSession;       // SessionCommands.cpp: the session, and objects of any kind
extern const TFamily kCreation;      // CreateCommands.cpp
extern const TFamily kFiles;         // FileCommands.cpp
extern const TFamily kQuestions;     // QueryCommands.cpp
extern const TFamily kRows;          // RowCommands.cpp: rows of one data set
extern const TFamily kManipulation;  // ManipulationCommands.cpp: new data sets out of others
extern const TFamily kTraining;      // TrainCommands.cpp
extern const TFamily kRecalls;       // RecallCommands.cpp: what networks make of data
extern const TFamily kPictures;      // PlotCommands.cpp
extern const TFamily kRules;         // RuleCommands.cpp: labels and rules of fuzzy networks

// How many rules a "retarn" that has been carried out has made and, where there are none, which
// threshold keeps them out. RuleCommands.cpp.
std::string RemarkOnRules(const TInterpreter& interpreter, const TCommandLine& line);

}  // namespace commands
}  // namespace kiln
