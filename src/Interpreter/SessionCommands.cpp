#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/TBasicNetwork.h"

namespace kiln::commands {

namespace {

// The network of an entry; null for other objects and for Kohonen maps, which are not copied.
std::shared_ptr<TBasicNetwork> CopyableNetwork(const TRegistryNode& node) {
  return node.As<TKohonenNetwork>() ? nullptr : AsNetwork(node);
}

}  // namespace

TAnswer Log(TInterpreter& interpreter, const TCommandLine& line) {
  if (line.Contains("start")) {
    interpreter.StartTranscript(RequiredPath(line, "filename not spcified or bad format"));
  } else if (line.Contains("stop")) {
    interpreter.StopTranscript();
  } else {
    Fail("must specify start or stop");
  }
  return kDone;
}

TAnswer Run(TInterpreter& interpreter, const TCommandLine& line) {
  return interpreter.RunScript(RequiredPath(line, "tag filename not found"));
}

TAnswer Copy(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& source = RequiredEntry(interpreter, RequiredAlias(line, "source"));
  const auto set = source.As<Data>();
  const auto network = CopyableNetwork(source);
  if (!set && !network) Fail("cannot copy this type of object");
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  if (set) {
    interpreter.Insert({destination, set->Clone()});
  } else {
    InsertNetwork(interpreter, destination, network->Clone());
  }
  return kDone;
}

TAnswer Destroy(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = Selector(line, "destroy");
  RequiredEntry(interpreter, alias);
  interpreter.Remove(alias);
  return kDone;
}

TAnswer Purge(TInterpreter& interpreter, const TCommandLine& /*line*/) {
  interpreter.Purge();
  return kDone;
}

}  // namespace kiln::commands
