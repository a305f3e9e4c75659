#include "Interpreter/Checks.h"
#include "Interpreter/CreateCommands.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "Tarn/TTarnLWF.h"

namespace kiln::commands {

int CreateBPTrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias", "cannot find alias tag");
  if (interpreter.Exists(alias)) Fail(alias, " already exists");
  const std::string_view name = RequiredAlias(line, "network", "cannot find network tag");
  const TRegistryNode* network = interpreter.Find(name);
  if (!network) Fail("cannot find network ", name);
  if (const auto perceptron = network->As<TMLPNetwork>()) {
    interpreter.Insert({alias, std::make_unique<TBackpropModule>(perceptron)});
  } else if (const auto tarn = network->As<TTarn>()) {
    interpreter.Insert({alias, std::make_unique<TTarnBP>(tarn)});
  } else {
    Fail("cannot BP train this object");
  }
  return kDone;
}

int CreateLWFTrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view name = RequiredAlias(line, "network");
  const TRegistryNode* network = interpreter.Find(name);
  if (!network) Fail("object ", name, " does not exist");
  const auto tarn = network->As<TTarn>();
  if (!tarn) Fail("object ", name, " is not of type Tarn");
  interpreter.Insert({alias, std::make_unique<TTarnLWF>(tarn)});
  return kDone;
}

}  // namespace kiln::commands
