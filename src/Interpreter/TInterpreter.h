#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Interpreter/Answers.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TDefinitions.h"
#include "Interpreter/TObjectRegistry.h"
#include "Interpreter/TTranscript.h"
#include "NeuralNets/Training/TEpochObserver.h"

namespace kiln {

// Follows a script: the path, the number of a line and its text.
using TScriptObserver =
    std::function<void(const std::string& path, std::int64_t number, std::string_view line)>;

// What a terminal has room for.
struct TScreen {
  std::size_t columns;
  bool has_unicode;
};

// The interpreter of the command language, and the registry of the objects that its commands make.
//
// Nothing that a command does or meets leaves Execute as an exception: every failure becomes an
// answer, and after it every object is as it was before.
class TInterpreter : public TObjectRegistry {
 public:
  // Runs one command. Returns a negative code for a failure, which GetError() explains, a positive
  // one for a command with a value, which GetResult() holds, and 0 for any other. An open
  // transcript takes the line and its answer. A text with a line end or a null character in it,
  // which would end what is written or opened by it, is refused.
  int Execute(std::string_view text);

  // Runs a line of a script: like Execute, but with what is defined in place of "$NAME". Shows
  // `seen` the line that comes of it before it runs.
  int ExecuteOfScript(std::string_view text,
                      const std::function<void(std::string_view line)>& seen);

  // The messages of the latest command that had one of the kind.
  const std::string& GetError() const { return error_message_; }
  const std::string& GetResult() const { return result_message_; }

  // Trainings call the observer after each epoch or generation, and end when it returns false.
  // There is none by default.
  void SetObserver(TEpochObserver observer) { observer_ = std::move(observer); }
  const TEpochObserver& Observer() const { return observer_; }

  // Pictures without a file are drawn on the screen, whose size is asked for each time. There is
  // none by default.
  void SetScreen(std::function<TScreen()> screen) { screen_ = std::move(screen); }
  const std::function<TScreen()>& Screen() const { return screen_; }

  // From now on refuses lines with anything odd in them, such as a tag that the command does not
  // know or a number that is none, which commands otherwise pass over.
  void BeStrict() { is_strict_ = true; }

  // What "$NAME" stands for in scripts from now on. Where nothing is defined a dollar is a dollar.
  void Define(TDefinitions definitions) { definitions_ = std::move(definitions); }

  // Scripts call the observer before each of their lines, as it is carried out. There is none by
  // default.
  void SetScriptObserver(TScriptObserver observer) { script_observer_ = std::move(observer); }

  // Takes note of a line that is not run. An open transcript has one comment, which says why, in
  // its place.
  void Refuse(std::string_view why) { transcript_.Write("#Error: ", why); }

  // Executes the lines of a file and returns the answer of the last one; calls `answered` with the
  // code of each that does not fail. Empty lines and those that begin with "#" are passed over. The
  // first line that fails ends the script by a TCommandFailure with the line's number and message.
  // The open transcript cannot be run.
  TAnswer RunScript(const std::string& path, const std::function<void(int code)>& answered = {});

  // From now on writes every command but "log", and its answer, to the file, which must not be one
  // that is being run. On failure throws TCommandFailure and goes on with the transcript that is
  // open.
  void StartTranscript(const std::string& path);

  // Closes the transcript, if one is open. Throws TCommandFailure when not all of it is on the
  // disk.
  void StopTranscript();

 private:
  int Answer(const TCommandLine& line);
  void Record(std::string_view line, int code);

  std::string error_message_;
  std::string result_message_;
  TTranscript transcript_;
  TScriptObserver script_observer_;
  std::function<TScreen()> screen_;
  TDefinitions definitions_;
  bool is_strict_ = false;
  TEpochObserver observer_;
  std::vector<std::string> running_scripts_;  // their paths, each run by the one before
};

}  // namespace kiln
