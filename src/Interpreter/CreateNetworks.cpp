#include <algorithm>

#include "Interpreter/Checks.h"
#include "Interpreter/CreateCommands.h"
#include "NeuralNets/TMLPNetwork.h"
#include "Shared/Narrowing.h"
#include "Tarn/TTarn.h"

namespace kiln::commands {

namespace {

// Each number as the nearest int.
std::vector<int> ToInts(const std::vector<std::int64_t>& numbers) {
  std::vector<int> ints(numbers.size());
  std::ranges::transform(numbers, ints.begin(), ToInt32);
  return ints;
}

}  // namespace

int CreateMLP(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias", "alias tag not found");
  if (interpreter.Exists(alias)) Fail("alias already exists");
  const std::int64_t inputs = Required(line.Long("inputs"), "number of inputs not specified");
  const std::int64_t layers = Required(line.Long("layers"), "number of layers not specified");
  const char* const bad_hidden = "number of hidden nodes not specified or bad format";
  const std::vector<std::int64_t> hidden = Required(line.Longs("hidden"), bad_hidden);
  if (std::ssize(hidden) + 2 != layers) Fail(bad_hidden);
  const std::int64_t outputs = Required(line.Long("outputs"), "number of outputs not specified");
  const bool bias = RequiredBoolean(line, "bias");

  std::vector<int> sizes = {AtLeast(1, inputs, "inputs")};
  for (const std::int64_t size : hidden) sizes.push_back(AtLeast(1, size, "hidden"));
  sizes.push_back(AtLeast(1, outputs, "outputs"));
  auto network = std::make_unique<TMLPNetwork>(sizes, bias);
  StartRandom(line);
  network->Randomize(-1.0, 1.0);
  interpreter.Insert({alias, std::move(network)});
  return kDone;
}

int CreateTarn(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::int64_t inputs = Required(line.Long("inputs"), "tag inputs not found");
  const std::vector<std::int64_t> conditions =
      Required(line.Longs("condition"), "tag condition not found");
  if (std::ssize(conditions) != inputs) {
    Fail("number of inputs does not match number of condition elements");
  }
  const std::int64_t rules = Required(line.Long("rules"), "tag rules not found");
  const std::int64_t outputs = Required(line.Long("outputs"), "tag outputs not found");
  const std::vector<std::int64_t> actions =
      Required(line.Longs("action"), "unable to find tag action");
  if (std::ssize(actions) != outputs) {
    Fail("number of outputs does not match number of action elements");
  }
  AtLeast(1, inputs, "inputs");
  const int num_rules = AtLeast(1, rules, "rules");
  AtLeast(1, outputs, "outputs");

  auto network = std::make_unique<TTarn>(ToInts(conditions), num_rules, ToInts(actions));
  StartRandom(line);
  network->InitWeights(-1.0, 1.0);
  interpreter.Insert({alias, std::move(network)});
  return kDone;
}

}  // namespace kiln::commands
