#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/TBasicNetwork.h"

namespace kiln::commands {

int Recall(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network", "cannot find tag network");
  const auto network = AsNetwork(RequiredEntry(interpreter, name));
  if (!network) Fail(name, " is not an ANN");
  const std::string_view input = RequiredAlias(line, "input", "cannot find tag input");
  const auto set = RequiredObject<Data>(interpreter, input, " must be type data");
  const std::string_view output = RequiredAlias(line, "output", "cannot find tag output");
  if (interpreter.Exists(output)) Fail("object ", output, " already exists");
  RequireColumns(input, set->Inputs(), "inputs", name, network->NumInputs());
  interpreter.Insert({output, network->Recall(set.get())});
  set->ResetCursor();
  return kDone;
}

}  // namespace kiln::commands
