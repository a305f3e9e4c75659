#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int Destroy(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view alias = Selector(line, "destroy");
  RequiredEntry(interpreter, alias);
  interpreter.Remove(alias);
  return kDone;
}

int Copy(TInterpreter& interpreter, const CommandLine& line) {
  const TRegistryNode& source = RequiredEntry(interpreter, RequiredAlias(line, "source"));
  const auto set = source.As<Data>();
  if (!set) Fail("cannot copy this type of object");
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  interpreter.Insert({destination, set->Clone()});
  return kDone;
}

}  // namespace kiln::commands
