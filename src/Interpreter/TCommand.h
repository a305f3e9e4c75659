#pragma once

#include <span>
#include <string_view>

#include "Interpreter/Answers.h"
#include "Interpreter/TTag.h"

// The table of commands. It says of every command what may be typed and what that means; handlers
// are found by it and can read no tag that it does not list, and help, completion, hints and strict
// reading are made from it.
namespace kiln {

class TCommandLine;
class TInterpreter;

// Carries out a command or one form of it and returns its answer; failures are thrown. A handler
// checks its arguments in a fixed order, each failed check being a TCommandFailure, and changes
// nothing before all of them have passed.
using THandler = TAnswer (*)(TInterpreter& interpreter, const TCommandLine& line);

// One of the forms of a command, "create MLP". A command that has only one has no word for it.
struct TForm {
  std::string_view word;
  std::string_view help;     // what it does, in one line
  std::string_view example;  // a whole line
  std::span<const TTag> tags;
  THandler handler;
  std::string_view
      kinds{};  // of "train" and "plot": the kinds of object for which this is the form

  // The tag whose value follows at once, without the tag: "destroy x", "query classof x". Null
  // where there is none.
  const TTag* Positional(std::string_view command) const {
    return FindTag(tags, word.empty() ? command : word);
  }
};

struct TCommand;

// Finds the form that a line means. Throws TCommandFailure when there is none.
using TFormChoice = const TForm& (*)(const TCommand& command, const TInterpreter& interpreter,
                                     const TCommandLine& line);

struct TCommand {
  std::string_view word;  // in any case
  std::string_view help;  // what it is for, in one line
  std::span<const TForm> forms;
  TFormChoice choose;
  std::string_view unknown{};  // the answer to a word that none of the forms has
  bool is_strict = false;      // its lines are read strictly even where others are not
};

// Commands that belong together, and what they are for.
struct TFamily {
  std::string_view title;
  std::span<const TCommand> commands;
};

// The form whose word stands behind that of the command, in any case, or the only one.
const TForm& FormByWord(const TCommand& command, const TInterpreter& interpreter,
                        const TCommandLine& line);

std::span<const TFamily* const> Families();

// The command called `word`, in any case, or null.
const TCommand* FindCommand(std::string_view word);

}  // namespace kiln
