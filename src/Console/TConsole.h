#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "Interpreter/TInterpreter.h"
#include "Interpreter/TLineReader.h"

namespace kiln {

// A conversation: writes the prompt, reads a line, carries it out and answers, again and again.
// The output is flushed before every read, so that a program can hold the conversation.
class TConsole {
 public:
  // Reads lines from the descriptor `input` and answers on `out`.
  TConsole(int input, std::ostream& out);

  // Goes on until "quit" or "exit", the end of the input, or until nothing can be written any more.
  void Converse();

  // Ends the session: the transcript, if one is open, reaches the disk. Throws TCommandFailure when
  // it does not.
  void Close() { interpreter_.StopTranscript(); }

 private:
  bool ReadLine();
  void Obey();
  void Answer();
  void RunSystemCommand();

  TInterpreter interpreter_;
  TLineReader input_;
  std::ostream& out_;
  std::string line_;
  std::string remembered_;  // the last line that was carried out
};

}  // namespace kiln
