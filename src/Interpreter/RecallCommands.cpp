#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

int Map(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view network = RequiredAlias(line, "network");
  RequiredKind<TKohonenNetwork>(RequiredEntry(interpreter, network), network,
                                " is not a Kohonen network");
  const std::string_view input = RequiredAlias(line, "input");
  RequiredKind<Data>(RequiredEntry(interpreter, input), input, " is not of type Data");
  RequiredNewAlias(interpreter, line, "output");
  NotYet("Kohonen maps");
}

int Label(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view network = RequiredAlias(line, "network");
  RequiredKind<TKohonenNetwork>(RequiredEntry(interpreter, network), network,
                                " is not of type Kohonen");
  const std::string_view map = RequiredAlias(line, "map");
  RequiredKind<Data>(RequiredEntry(interpreter, map), map, " is not of type data");
  const std::string_view coord = RequiredAlias(line, "coord");
  RequiredKind<Data>(RequiredEntry(interpreter, coord), coord, " is not of type data");
  RequiredNewAlias(interpreter, line, "output");
  NotYet("Kohonen maps");
}

}  // namespace kiln::commands
