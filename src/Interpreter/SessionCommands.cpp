#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int Log(TInterpreter& interpreter, const TCommandLine& line) {
  if (line.Contains("start")) {
    interpreter.StartTranscript(RequiredPath(line, "filename not spcified or bad format"));
  } else if (line.Contains("stop")) {
    interpreter.StopTranscript();
  } else {
    Fail("must specify start or stop");
  }
  return kDone;
}

int Run(TInterpreter& interpreter, const TCommandLine& line) {
  return interpreter.RunScript(RequiredPath(line, "tag filename not found"));
}

int Purge(TInterpreter& interpreter, const TCommandLine& /*line*/) {
  interpreter.Purge();
  return kDone;
}

}  // namespace kiln::commands
