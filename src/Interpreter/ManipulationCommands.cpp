#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int Shuffle(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  RequiredNewAlias(interpreter, line, "destination");
  RequiredKind<Data>(node, source, " is not of type Data");
  NotYet("Shuffled data sets");
}

int Normalise(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  RequiredNewAlias(interpreter, line, "destination");
  if (Required(line.Word("method"), "tag method not found") != "linear") {
    Fail("unknown normalisation method");
  }
  RequiredKind<Data>(node, source, " is not of type Data");
  NotYet("Normalised data sets");
}

int Denormalise(TInterpreter& interpreter, const CommandLine& line) {
  return Normalise(interpreter, line);
}

}  // namespace kiln::commands
