#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int Destroy(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view alias = Selector(line, "destroy");
  RequiredEntry(interpreter, alias);
  interpreter.Remove(alias);
  return kDone;
}

}  // namespace kiln::commands
