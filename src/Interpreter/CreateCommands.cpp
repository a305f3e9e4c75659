#include <algorithm>
#include <cmath>
#include <limits>

#include "DataObject/Data.h"
#include "DataTools/DataManip/TDataStats.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "GA-Apps/GenTrain/TTarnGA.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/Training/ActDerivatives.h"
#include "NeuralNets/Training/TBackpropModule.h"
#include "Shared/Narrowing.h"
#include "Tarn/TTarn.h"
#include "Tarn/TTarnLWF.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// --- Networks --------------------------------------------------------------------------------

// Each number as the nearest int.
std::vector<int> ToInts(const std::vector<std::int64_t>& numbers) {
  std::vector<int> ints(numbers.size());
  std::ranges::transform(numbers, ints.begin(), ToInt32);
  return ints;
}

// The functions of the layers behind the first; none when the line has none.
std::vector<TActFunction> ReadFunctions(const TCommandLine& line, std::size_t layers) {
  const auto names = line.WordsAt("functions");
  if (!names) {
    if (line.WordOfTag("functions").code == TReadCode::kRead) {
      Fail("functions must stand in braces, as in {tanh, linear}");
    }
    return {};
  }
  std::vector<TActFunction> functions;
  for (const std::string_view name : *names) {
    const TFnRegistry& registry = TFnRegistry::Instance();
    if (!registry.Contains(name) || !HasDerivative(registry.Lookup(name))) {
      Fail("unknown function ", name,
           ": linear, sigmoid, tanh, linear-gain, sigmoid-gain or tanh-gain");
    }
    functions.push_back(registry.Lookup(name));
  }
  if (functions.size() != layers) Fail("functions must name one for each layer behind the first");
  return functions;
}

TAnswer CreateMLP(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias", "alias tag not found");
  if (interpreter.Exists(alias)) Fail("alias already exists");
  const std::int64_t inputs = Required(line.Long("inputs"), "number of inputs not specified");
  const std::int64_t layers = Required(line.Long("layers"), "number of layers not specified");
  const char* const bad_hidden = "number of hidden nodes not specified or bad format";
  const std::vector<std::int64_t> hidden = Required(line.Longs("hidden"), bad_hidden);
  if (std::ssize(hidden) + 2 != AtLeast(2, layers, "layers")) Fail(bad_hidden);
  const std::int64_t outputs = Required(line.Long("outputs"), "number of outputs not specified");
  const bool bias = RequiredBoolean(line, "bias");

  std::vector<int> sizes = {AtLeast(1, inputs, "inputs")};
  for (const std::int64_t size : hidden) sizes.push_back(AtLeast(1, size, "hidden"));
  sizes.push_back(AtLeast(1, outputs, "outputs"));
  const std::vector<TActFunction> functions = ReadFunctions(line, sizes.size() - 1);
  auto network = std::make_unique<TMLPNetwork>(sizes, bias);
  for (std::size_t i = 0; i < functions.size(); ++i) {
    network->Layer(TMLPNetwork::kInputLayer + 1 + i).SetActivation(functions[i]);
  }
  StartRandom(line);
  network->Randomize(-1.0, 1.0);
  interpreter.Insert({alias, std::move(network)});
  return kDone;
}

TAnswer CreateTarn(TInterpreter& interpreter, const TCommandLine& line) {
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

TAnswer CreateKohonen(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::int64_t inputs = Required(line.Long("inputs"), "tag inputs not found");
  const std::int64_t dimensions = Required(line.Long("dimensions"), "tag dimensions not found");
  const std::vector<std::int64_t> mapdim = Required(line.Longs("mapdim"), "tag mapdim not found");
  if (std::ssize(mapdim) != dimensions) {
    Fail("Number of dimensions does not match number of array elements");
  }

  const int checked_inputs = AtLeast(1, inputs, "inputs");
  AtLeast(1, dimensions, "dimensions");
  std::vector<int> sizes(mapdim.size());
  std::ranges::transform(mapdim, sizes.begin(),
                         [](std::int64_t size) { return AtLeast(1, size, "mapdim"); });
  auto map = std::make_unique<TKohonenNetwork>(checked_inputs, std::move(sizes));
  StartRandom(line);
  map->Randomize(0.0, 1.0);
  interpreter.Insert({alias, std::move(map)});
  return kDone;
}

// --- Trainers --------------------------------------------------------------------------------

TAnswer CreateBPTrainer(TInterpreter& interpreter, const TCommandLine& line) {
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

TAnswer CreateLWFTrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view name = RequiredAlias(line, "network");
  const TRegistryNode* network = interpreter.Find(name);
  if (!network) Fail("object ", name, " does not exist");
  const auto tarn = network->As<TTarn>();
  if (!tarn) Fail("object ", name, " is not of type Tarn");
  interpreter.Insert({alias, std::make_unique<TTarnLWF>(tarn)});
  return kDone;
}

// Genes are of single precision, and so are the bounds of their values.
float SingleBound(double bound, std::string_view tag) {
  if (!(std::abs(bound) <= std::numeric_limits<float>::max())) {
    Fail(tag, " must be within -3.4e38 and 3.4e38");
  }
  return static_cast<float>(bound);
}

std::size_t CheckedPopulation(std::int64_t population) {
  const auto size = static_cast<std::size_t>(AtLeast(1, population, "population"));
  if (size > TGenTrain::kMaxPopulation) {
    Fail("population must be at most ", std::to_string(TGenTrain::kMaxPopulation));
  }
  return size;
}

TAnswer CreateGATrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const TRegistryNode& network = RequiredEntry(interpreter, RequiredAlias(line, "network"));
  const auto perceptron = network.As<TMLPNetwork>();
  const auto tarn = network.As<TTarn>();
  if (!perceptron && !tarn) Fail("cannot GA train this type of object");
  const double minimum = Required(line.Double("minweight"), "tag minweight not found");
  const double maximum = Required(line.Double("maxweight"), "tag maxweight not found");
  if (!(minimum < maximum)) Fail("minweight must be < maxweight");
  const std::int64_t asked_population =
      Required(line.Long("population"), "tag population not found");

  const TWeightBounds bounds = {SingleBound(minimum, "minweight"),
                                SingleBound(maximum, "maxweight")};
  const std::size_t population = CheckedPopulation(asked_population);
  if (tarn) {
    interpreter.Insert({alias, std::make_unique<TTarnGA>(tarn, bounds, population)});
  } else {
    interpreter.Insert({alias, std::make_unique<TMLPGA>(perceptron, bounds, population)});
  }
  return kDone;
}

TAnswer CreateKohonenTrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view name = RequiredAlias(line, "network");
  const auto map = RequiredObject<TKohonenNetwork>(interpreter, name, " is not a Kohonen network");
  interpreter.Insert({alias, std::make_unique<TKohonenModule>(map)});
  return kDone;
}

// --- Data ------------------------------------------------------------------------------------

TAnswer CreateData(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  if (interpreter.Exists(alias)) Fail("alias ", alias, " already exists");
  const std::int64_t inputs = Required(line.Long("inputs"), "tag inputs not found");
  const std::int64_t outputs = Required(line.Long("outputs"), "tag outputs not found");
  const std::int64_t rows = Required(line.Long("rows"), "tag rows not found");
  const bool labels = RequiredBoolean(line, "labels");
  const int input_columns = AtLeast(0, inputs, "inputs");
  const int output_columns = AtLeast(0, outputs, "outputs");
  const int positions = AtLeast(0, rows, "rows");
  interpreter.Insert(
      {alias, std::make_unique<Data>(positions, input_columns, output_columns, labels)});
  return kDone;
}

TAnswer CreateDataStats(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view source = RequiredAlias(line, "source");
  auto set = RequiredObject<Data>(interpreter, source, " is not type Data");
  interpreter.Insert({alias, std::make_unique<TDataStats>(std::move(set))});
  return kDone;
}

constexpr TTag kAliasTag = {"alias", kNewAlias, "its name"};
constexpr TTag kNetworkTag = {"network", kAlias, "the network that it trains"};

constexpr TTag kMLPTags[] = {
    kAliasTag,
    {"inputs", kLong, "neurons of the first layer"},
    {"layers", kLong, "number of layers, the first and the last included"},
    {"hidden", kLongs, "neurons of each layer in between"},
    {"outputs", kLong, "neurons of the last layer"},
    {"bias", kBoolean, "whether every layer behind the first has a constant input"},
    TTag{"functions", kWords, "the function of each layer behind the first"}.Or("sigmoid for all"),
    kSeedTag,
};

constexpr TTag kTarnTags[] = {
    kAliasTag,
    {"inputs", kLong, "number of inputs"},
    {"condition", kLongs, "number of terms of each input, 2 or more"},
    {"rules", kLong, "number of rules"},
    {"outputs", kLong, "number of outputs"},
    {"action", kLongs, "number of terms of each output, 2 or more"},
    kSeedTag,
};

constexpr TTag kKohonenTags[] = {
    kAliasTag,
    {"inputs", kLong, "values of a pattern"},
    {"dimensions", kLong, "dimensions of the grid of units"},
    {"mapdim", kLongs, "units along each dimension"},
    kSeedTag,
};

constexpr TTag kBPTrainerTags[] = {kAliasTag, kNetworkTag.Of("MLP Tarn")};
constexpr TTag kLWFTrainerTags[] = {kAliasTag, kNetworkTag.Of("Tarn")};
constexpr TTag kKohonenTrainerTags[] = {kAliasTag, kNetworkTag.Of("Kohonen")};

constexpr TTag kGATrainerTags[] = {
    kAliasTag,
    kNetworkTag.Of("MLP Tarn"),
    {"minweight", kDouble, "random weights are not less"},
    {"maxweight", kDouble, "random weights are not more"},
    {"population", kLong, "networks that are bred side by side"},
};

constexpr TTag kDataTags[] = {
    kAliasTag,
    {"inputs", kLong, "columns of inputs"},
    {"outputs", kLong, "columns of outputs"},
    {"rows", kLong, "rows that it has room for"},
    {"labels", kBoolean, "whether each row carries a list of weighted labels"},
};

constexpr TTag kDataStatsTags[] = {
    kAliasTag,
    TTag{"source", kAlias, "the data set that they are of"}.Of("Data"),
};

constexpr TForm kKinds[] = {
    {"Data", "makes an empty data set",
     "create Data alias d inputs 3 outputs 1 rows 100 labels off", kDataTags, CreateData},
    {"DataStats", "makes statistics of a data set, for query getstats",
     "create DataStats alias s source d", kDataStatsTags, CreateDataStats},
    {"MLP", "makes a multi-layer perceptron with random weights",
     "create MLP alias net inputs 3 layers 3 hidden {5} outputs 2 bias on seed 1", kMLPTags,
     CreateMLP},
    {"Kohonen", "makes a self-organising map with random prototypes",
     "create Kohonen alias k inputs 4 dimensions 2 mapdim {8, 8} seed 1", kKohonenTags,
     CreateKohonen},
    {"Tarn", "makes a fuzzy network, which can be read as rules",
     "create Tarn alias net inputs 2 condition {3, 2} rules 6 outputs 1 action {3}", kTarnTags,
     CreateTarn},
    {"BPTrainer", "makes a trainer that descends the gradient of the error",
     "create BPTrainer alias teacher network net", kBPTrainerTags, CreateBPTrainer},
    {"LWFTrainer", "makes a trainer of fuzzy networks that also forgets",
     "create LWFTrainer alias teacher network fuzzy", kLWFTrainerTags, CreateLWFTrainer},
    {"GATrainer", "makes a trainer that breeds weights",
     "create GATrainer alias g network net minweight -1 maxweight 1 population 50", kGATrainerTags,
     CreateGATrainer},
    {"KohonenTrainer", "makes a trainer of a self-organising map",
     "create KohonenTrainer alias teacher network k", kKohonenTrainerTags, CreateKohonenTrainer},
};

constexpr TCommand kCommands[] = {
    {"create", "makes an object", kKinds, FormByWord, "unknown argument to create"},
};

}  // namespace

const TFamily kCreation = {"new objects", kCommands};

}  // namespace kiln::commands
