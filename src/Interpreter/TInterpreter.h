#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "Interpreter/Answers.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TObjectRegistry.h"
#include "Interpreter/TTranscript.h"
#include "NeuralNets/Training/TEpochObserver.h"

namespace kiln {

// The interpreter of the command language, and the registry of the objects that its commands make.
//
// Nothing that a command does or meets leaves Execute as an exception: every failure becomes an
// answer, and after it every object is as it was before.
class TInterpreter : public TObjectRegistry {
 public:
  // Runs one command. Returns a negative code for a failure, which GetError() explains, a positive
  // one for a command with a value, which GetResult() holds, and 0 for any other. An open
  // transcript takes the line and its answer.
  int Execute(std::string_view text);

  // The messages of the latest command that had one of the kind.
  const std::string& GetError() const { return error_message_; }
  const std::string& GetResult() const { return result_message_; }

  // What trainings call after each epoch or generation; they end when it says so. Nobody by
  // default.
  void SetObserver(TEpochObserver observer) { observer_ = std::move(observer); }
  const TEpochObserver& Observer() const { return observer_; }

  // Takes note of a line that is not run. An open transcript has one comment, which says why, in
  // its place.
  void Refuse(std::string_view why) { transcript_.Write("#Error: ", why); }

  // Executes the lines of a file and returns the answer of the last one. Empty lines and those that
  // begin with "#" are passed over. The first line that fails ends the script: its number and its
  // message are those of the TCommandFailure. The open transcript cannot be run.
  TAnswer RunScript(const std::string& path);

  // From now on writes every command but "log", and its answer, to the file, which must not be one
  // that is being run. On failure throws TCommandFailure and goes on with the transcript that is
  // open.
  void StartTranscript(const std::string& path);

  // Closes the transcript, if one is open. Throws TCommandFailure when not all of it is on the
  // disk.
  void StopTranscript() { transcript_.Close(); }

 private:
  int Answer(const TCommandLine& line);
  void Record(std::string_view line, int code);

  std::string error_message_;
  std::string result_message_;
  TTranscript transcript_;
  TEpochObserver observer_;
  std::vector<std::string> running_scripts_;  // their paths, each run by the one before
};

}  // namespace kiln
