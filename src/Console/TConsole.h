#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "Console/Options.h"
#include "Console/TGuide.h"
#include "Console/TLineSource.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

// How a console writes.
struct TManner {
  bool is_quiet = false;     // results alone on the output, errors on the standard error
  bool at_terminal = false;  // to a person: answers of several lines on several lines, and a line
                             // end behind the last prompt
  bool has_colour = false;   // "Error:" in red on a screen
  // Whether the output and the standard error are screens. Nothing that a terminal would obey is
  // written there, wherever it comes from.
  bool out_is_screen = false;
  bool error_is_screen = false;
};

// A session: carries out commands of files and of the command line, and holds conversations.
class TConsole {
 public:
  // Answers on `out`, which must outlive the console, and has what the library says written there.
  TConsole(std::ostream& out, TManner manner);
  ~TConsole();

  TConsole(const TConsole&) = delete;
  TConsole& operator=(const TConsole&) = delete;

  TInterpreter& Interpreter() { return interpreter_; }

  // From now on shows a person at a terminal the progress of commands, and gives hints.
  void Guide() { guide_.emplace(interpreter_, out_); }

  // Carries out a file or a command, as "run" does with a script, and writes the answer of each
  // line. Returns whether all went well; if not, the standard error says what was wrong, be it that
  // an interruption was requested since the task before began.
  bool CarryOut(const TTask& task);

  // A conversation: writes the prompt, reads a line, carries it out and answers, again and again,
  // until "quit" or "exit", the end of the lines, or until nothing can be written any more. The
  // output is flushed before every read, so that a program can hold the conversation.
  void Converse(TLineSource& lines);

  // The same, but the first command that fails ends it. Returns whether there was none.
  bool ConverseUntilFailure(TLineSource& lines);

  // Ends the session: the transcript, if one is open, reaches the disk. Throws TCommandFailure when
  // it does not.
  void Close() { interpreter_.StopTranscript(); }

 private:
  // How it went with a line of a conversation.
  enum class TOutcome { kDone, kFailed, kEnd };

  void Perform(const TTask& task);
  TOutcome TakeLine(TLineSource& lines);
  TOutcome Obey();
  TOutcome Execute();
  TOutcome RunSystemCommand();
  void Answer(int code);
  void WriteAnswer(int code);
  void Complain(std::string_view why, std::ostream& out) const;
  void Write(std::string_view text, std::ostream& out) const;
  bool IsScreen(const std::ostream& out) const;
  TOutcome Refuse(std::string_view fault);

  TInterpreter interpreter_;
  std::ostream& out_;
  std::optional<TGuide> guide_;
  TManner manner_;
  std::string line_;
  std::string remembered_;  // the last line that was carried out
};

}  // namespace kiln
