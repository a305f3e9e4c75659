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

int Destroy(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = Selector(line, "destroy");
  RequiredEntry(interpreter, alias);
  interpreter.Remove(alias);
  return kDone;
}

int Copy(TInterpreter& interpreter, const TCommandLine& line) {
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

}  // namespace kiln::commands
