#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "Bramble/Status.h"
#include "DataObject/Data.h"
#include "GA-Apps/GenTrain/TGenTrain.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "KQmessage/TKQstructure.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "NeuralNets/Training/TTrainModule.h"
#include "Shared/Narrowing.h"
#include "Shared/NumberFormat.h"
#include "Shared/NumberScan.h"
#include "Shared/Text.h"
#include "Tarn/TFrozenCentres.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// A trainer and the set that it is to learn, with their aliases.
struct TLesson {
  std::string_view trainer_alias;
  const TRegistryNode& trainer;
  std::string_view set_alias;
  const Data& set;
  const TEpochObserver& observer;
  const TObjectRegistry& registry;
};

// Reads the tags of one kind of trainer, trains and gives the answer.
using TTraining = TAnswer (*)(const TCommandLine& line, const TLesson& lesson);

// Fails unless all of these values of row `n`, counted from 0, are numbers that weights can take
// up.
void CheckFinite(std::string_view alias, int n, std::span<const double> values,
                 std::string_view side) {
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (std::isfinite(values[k])) continue;
    Fail(alias, " has no finite number in row ", std::to_string(n + 1), ", column ",
         std::to_string(k + 1), " of the ", side);
  }
}

void CheckFiniteInputs(std::string_view alias, const Data& set) {
  for (int n = 0; n < set.DataRows(); ++n) CheckFinite(alias, n, set.Row(n).Inputs, "inputs");
}

// The same for every number that the line gives.
void CheckFiniteTags(const TCommandLine& line) {
  for (const TTag& tag : line.Tags()) {
    if (tag.kind != kDouble && tag.kind != kDoubles) continue;
    std::vector<double> values = {Optional(line.Double(tag.name), 0.0)};
    if (tag.kind == kDoubles) values = Optional(line.Doubles(tag.name), values);
    if (!std::ranges::all_of(values, [](double value) { return std::isfinite(value); })) {
      Fail(tag.name, " must be finite");
    }
  }
}

// Fails unless the set has rows, of finite numbers, and fits the trainer's network.
void CheckFits(const TLesson& lesson, std::string_view alias, const Data& set,
               const TBasicNetwork& network) {
  const std::string owner = "the network of " + std::string(lesson.trainer_alias);
  RequireColumns(alias, set.Inputs(), "inputs", owner, network.NumInputs());
  RequireColumns(alias, set.Outputs(), "outputs", owner, network.NumOutputs());
  if (set.DataRows() == 0) Fail(alias, " has no rows");
  CheckFiniteInputs(alias, set);
  for (int n = 0; n < set.DataRows(); ++n) CheckFinite(alias, n, set.Row(n).Outputs, "outputs");
}

// --- Frozen centres --------------------------------------------------------------------------

constexpr char kFreezeWords[] = "freeze takes {centres}, {inputcentres} or {outputcentres}";

// What may be frozen, by the words behind "freeze".
struct TFreezing {
  std::string_view word;
  bool inputs;
  bool outputs;
};

constexpr TFreezing kFreezings[] = {
    {"centres", true, true}, {"inputcentres", true, false}, {"outputcentres", false, true}};

// Freezes what the line names for as long as the result lives; null where it names nothing.
std::unique_ptr<TFrozenCentres> FreezeCentres(const TCommandLine& line, const TLesson& lesson) {
  const auto words = line.WordsAt("freeze");
  if (!words) {
    if (line.WordOfTag("freeze").code == TReadCode::kRead) Fail(kFreezeWords);
    return nullptr;
  }
  bool inputs = false;
  bool outputs = false;
  for (const std::string_view element : *words) {
    const TFreezing* freezing = FindNoCase(kFreezings, TrimBlanks(element), &TFreezing::word);
    if (!freezing) Fail(kFreezeWords);
    inputs |= freezing->inputs;
    outputs |= freezing->outputs;
  }
  TTarn* const tarn = TrainedTarn(lesson.trainer);
  if (!tarn) Fail("the network of ", lesson.trainer_alias, " has no centres");
  auto frozen = std::make_unique<TFrozenCentres>(*tarn);
  if (inputs) frozen->FreezeInputs();
  if (outputs) frozen->FreezeOutputs();
  return frozen;
}

// --- Validation ------------------------------------------------------------------------------

// The validation set that the line names, which the registry keeps; nothing where it names none.
std::optional<TValidationSet> NamedValidation(const TCommandLine& line, const TLesson& lesson,
                                              const TBasicNetwork& network) {
  const TReading<std::string_view> patience = line.WordOfTag("patience");
  const bool has_end = patience.code == TReadCode::kRead;
  const TReading<std::string_view> validation = line.WordOfTag("validation");
  if (validation.code != TReadCode::kRead) {
    if (has_end) Fail("tag validation not found");
    return std::nullopt;
  }
  const std::string_view alias = validation.value;
  RefuseReserved(alias);
  const Data& set = *RequiredObject<Data>(lesson.registry, alias, " is not of type data");
  CheckFits(lesson, alias, set, network);
  const std::int64_t epochs = ScanInteger(patience.value).value_or(0);
  return TValidationSet{set, has_end ? AtLeast(1, epochs, "patience") : 0};
}

// --- Gradient trainers -----------------------------------------------------------------------

// The number with all of its digits. SetDouble keeps six decimals, which turn a small one into 0.
std::string Exact(double value) {
  std::string text;
  AppendShortest(text, value);
  return text;
}

// The method, which is put into the parameters with such of its constants as the line has.
TMethodKind ReadMethod(const TCommandLine& line, TKQstructure& params) {
  const TReading<std::string_view> word = line.Word("method");
  if (word.code != TReadCode::kRead) return TMethodKind::kGradient;
  const std::optional<TMethodKind> method = FindMethod(word.value);
  if (!method) Fail("unknown method ", word.value, ": ", kMethodWords);
  params.SetString("Method", std::string(word.value));
  for (const char* const tag : {"FirstStep", "LargestStep", "Beta1", "Beta2", "Epsilon"}) {
    const TReading<double> constant = line.Double(tag);
    if (constant.code == TReadCode::kRead) params.SetString(tag, Exact(constant.value));
  }
  return *method;
}

// The penalty that the line asks for; null where it asks for none. A trainer that does not forget
// passes over a decay unless the kind of penalty is named.
std::unique_ptr<TKQstructure> ReadPenalty(const TCommandLine& line, double learning_rate,
                                          bool forgets) {
  const TReading<double> decay = line.Double("decay");
  const TReading<std::string_view> kind = line.WordOfTag("penalty");
  const bool is_named = kind.code == TReadCode::kRead;
  const bool is_quadratic = is_named && EqualNoCase(kind.value, "quadratic");
  if (is_named && !is_quadratic && !EqualNoCase(kind.value, "forgetting")) {
    Fail("unknown penalty ", kind.value, ": quadratic or forgetting");
  }
  if (decay.code != TReadCode::kRead) {
    if (is_named) Fail("tag decay not found");
    return nullptr;
  }
  if (!is_named && !forgets) return nullptr;
  auto penalty = std::make_unique<TKQstructure>(is_quadratic ? "QUADPENALTY" : "LWF");
  penalty->SetString(is_quadratic ? "Epsilon2" : "ForgettingRate", Exact(decay.value));
  if (!is_quadratic) penalty->SetDouble("LearningRate", learning_rate);
  return penalty;
}

// Puts the measure of the error that the line asks for into the parameters.
void ReadErrorFunction(const TCommandLine& line, const TLesson& lesson,
                       const TBasicNetwork& network, TKQstructure& params) {
  const TReading<std::string_view> word = line.WordOfTag("error");
  if (word.code != TReadCode::kRead || EqualNoCase(word.value, "meansquare")) return;
  if (!EqualNoCase(word.value, "crossentropy")) {
    Fail("unknown error ", word.value, ": meansquare or crossentropy");
  }
  if (network.Layer(network.OutputLayer()).GetActivation() != ActSigmoid) {
    Fail("crossentropy needs sigmoid outputs, which the network of ", lesson.trainer_alias,
         " has not");
  }
  params.SetString("ErrorFunction", "CrossEntropy");
}

// The parameters of a gradient trainer. One that does not forget has no decay by default.
TKQstructure GradientParams(const TCommandLine& line, bool forgets) {
  TKQstructure params("Params");
  const TMethodKind method = ReadMethod(line, params);
  const bool is_adam = method == TMethodKind::kAdam;
  const double default_rate = is_adam ? TAdam::TConstants().rate : 0.8;
  const double learning_rate = Optional(line.Double("LearningRate"), default_rate);
  params.SetDouble("LearningRate", learning_rate);
  if (is_adam) params.SetString("LearningRate", Exact(learning_rate));
  params.SetDouble("Momentum", Optional(line.Double("Momentum"), 0.5));
  params.SetString("Threshold", Exact(Optional(line.Double("terminating"), 0.0)));
  if (auto penalty = ReadPenalty(line, learning_rate, forgets)) {
    params.SetValue("WeightPenalty", std::move(penalty));
  }
  const std::string_view mode = Optional(line.Word("mode"), std::string_view("pattern"));
  if (EqualNoCase(mode, "batch")) params.SetString("batch", "true");
  if (const std::optional<std::int64_t> rows = line.WholeNumber("batch")) {
    if (method != TMethodKind::kGradient && !is_adam)
      Fail("batch is for the methods gradient and adam");
    params.SetLong("batch", AtLeast(1, *rows, "batch"));
  }
  return params;
}

TAnswer TrainByGradient(const TCommandLine& line, const TLesson& lesson) {
  int epochs = AtLeast(0, Required(line.Long("epochs"), "tag epochs not found"), "epochs");
  const std::shared_ptr<TTrainModule> trainer = AsGradientTrainer(lesson.trainer);
  TKQstructure params = GradientParams(line, !lesson.trainer.As<TTarnBP>());
  const TBasicNetwork& network = std::as_const(*trainer).Network();
  CheckFits(lesson, lesson.set_alias, lesson.set, network);
  ReadErrorFunction(line, lesson, network, params);
  const auto validation = NamedValidation(line, lesson, network);
  const auto frozen = FreezeCentres(line, lesson);
  return AnswerFixed(trainer->Train(lesson.set, params, epochs, lesson.observer,
                                    validation ? &*validation : nullptr));
}

// --- Genetic trainers ------------------------------------------------------------------------

RunSettings ReadSettings(const TCommandLine& line) {
  RunSettings settings;
  settings.NdxElites = Optional(line.Boolean("elitism"), true) ? 1 : 0;
  settings.IntCrossover = ToInt32(Optional(line.Long("crossover"), std::int64_t{1}));
  settings.FltMutation = ToSingle(Optional(line.Double("mutation"), 0.001));
  const std::string_view selection = Optional(line.Word("selection"), std::string_view());
  settings.MtdSelection = EqualNoCase(selection, "Tournament") ? SelectionMethod::kTournament
                                                               : SelectionMethod::kRoulette;
  settings.BolScale = Optional(line.Boolean("normalisation"), true);
  settings.IntGenerations =
      AtLeast(0, Required(line.Long("generations"), "tag generations not found"), "generations");
  return settings;
}

TAnswer TrainGenetically(const TCommandLine& line, const TLesson& lesson) {
  const double target_error = Optional(line.Double("terminating"), 0.0);
  const RunSettings settings = ReadSettings(line);
  const std::shared_ptr<TGenTrain> trainer = AsGeneticTrainer(lesson.trainer);
  CheckFits(lesson, lesson.set_alias, lesson.set, trainer->Network());
  const auto validation = NamedValidation(line, lesson, trainer->Network());
  const auto frozen = FreezeCentres(line, lesson);
  StartRandom(line);
  trainer->Initialise();
  const std::array sets = {&lesson.set};
  return AnswerGeneral(trainer->Train(settings, target_error, sets, lesson.observer,
                                      validation ? &*validation : nullptr));
}

// --- Kohonen trainers ------------------------------------------------------------------------

// The factor that brings the learning rate, and what a radius has beyond 1, down to a hundredth
// within all epochs, or within ten where there are fewer.
double DefaultFactor(int epochs) {
  return std::pow(0.01, 1.0 / std::max(epochs, 10));
}

TAnswer TrainMap(const TCommandLine& line, const TLesson& lesson) {
  const std::int64_t asked_epochs = Required(line.Long("epochs"), "tag epochs not found");
  const double rate = Required(line.Double("LearningRate"), "tag LearningRate not found");
  // The tag has a small letter, and its message, which is frozen, a capital one.
  std::vector<double> radii =
      Required(line.Doubles("neighbourhood"), "tag Neighbourhood not found");

  const int epochs = AtLeast(0, asked_epochs, "epochs");
  const double rate_factor = Optional(line.Double("RateFactor"), DefaultFactor(epochs));
  const double radius_factor = Optional(line.Double("RadiusFactor"), DefaultFactor(epochs));
  const auto trainer = lesson.trainer.As<TKohonenModule>();
  const TKohonenNetwork& map = trainer->Map();
  const std::string owner = "the map of " + std::string(lesson.trainer_alias);
  RequireColumns("neighbourhood", static_cast<int>(radii.size()), "dimensions", owner,
                 map.Grid().NumDimensions());
  RequireColumns(lesson.set_alias, lesson.set.Inputs(), "inputs", owner, map.NumInputs());
  if (lesson.set.DataRows() == 0) Fail(lesson.set_alias, " has no rows");
  CheckFiniteInputs(lesson.set_alias, lesson.set);
  trainer->Train(lesson.set, rate, radii, epochs, rate_factor, radius_factor, lesson.observer);
  return kDone;
}

// --- All trainers ----------------------------------------------------------------------------

// Trains the trainer that the line names in its own way.
template <TTraining train>
TAnswer Train(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const TRegistryNode& trainer = RequiredEntry(interpreter, alias);
  const std::string_view set_alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, set_alias, " is not of type data");
  CheckFiniteTags(line);
  TAnswer answer =
      train(line, {alias, trainer, set_alias, *set, interpreter.Observer(), interpreter});
  set->ResetCursor();
  return answer;
}

TAnswer GetTrained(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& source = RequiredEntry(interpreter, RequiredAlias(line, "source"));
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  const TBasicNetwork* network = TrainedNetwork(source);
  if (!network) Fail("cannot gettrained from this type of object");
  InsertNetwork(interpreter, destination, network->Clone());
  return kDone;
}

// The form for the kind of trainer that the line names.
const TForm& FormByTrainer(const TCommand& command, const TInterpreter& interpreter,
                           const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const std::string_view kind = RequiredEntry(interpreter, alias).Kind();
  for (const TForm& form : command.forms) {
    if (HasWord(form.trainers, kind)) return form;
  }
  Fail(alias, " is not a training object");
}

constexpr TTag kTrainerTag = {"alias", kAlias, "the trainer"};
constexpr TTag kDataTag = TTag{"data", kAlias, "the data set to be learned"}.Of("Data");

constexpr TTag kFreezeTag =
    TTag{"freeze", kWords, "{centres}: those of a fuzzy network stay"}.Or("everything is trained");

constexpr TTag kValidationTag =
    TTag{"validation", kAlias, "a set by which the weights are chosen that are kept"}.Of("Data").Or(
        "the last ones are kept");
constexpr TTag kPatienceTag = {"patience", kLong, "how long to go on after the least error on it"};

constexpr char kGradientTrainers[] = "BP TarnBP TarnLWF";
constexpr TTag kGradientTags[] = {
    kTrainerTag.Of(kGradientTrainers),
    kDataTag,
    {"epochs", kLong, "how often to go through the set"},
    TTag{"method", kChoice, "how gradients change weights"}
        .Of("gradient rprop adam levenberg")
        .Or("gradient"),
    TTag{"LearningRate", kDouble, "size of a step down the gradient"}.Or("0.8, for adam 0.001"),
    TTag{"Momentum", kDouble, "share of the last change in the next one"}.Or("0.5"),
    TTag{"mode", kChoice, "one change a row, or one an epoch"}.Of("pattern batch").Or("pattern"),
    TTag{"batch", kSeed, "one change after so many rows, for gradient and adam"}.Or("see mode"),
    TTag{"FirstStep", kDouble, "step size with which rprop begins"}.Or("0.1"),
    TTag{"LargestStep", kDouble, "largest step size of rprop"}.Or("50"),
    TTag{"Beta1", kDouble, "share of adam's mean gradient that stays"}.Or("0.9"),
    TTag{"Beta2", kDouble, "share of adam's mean square that stays"}.Or("0.999"),
    TTag{"Epsilon", kDouble, "what adam adds to the root of the mean square"}.Or("1e-8"),
    TTag{"decay", kDouble, "rate at which weights are forgotten, or factor of their squares"}.Or(
        "no penalty"),
    TTag{"penalty", kChoice, "which weights cost what"}.Of("forgetting quadratic").Or("forgetting"),
    TTag{"error", kChoice, "what is made small"}.Of("meansquare crossentropy").Or("meansquare"),
    kValidationTag,
    kPatienceTag.Or("all epochs are run"),
    TTag{"terminating", kDouble, "training ends below this error"}.Or("0, never"),
    kFreezeTag,
};

constexpr char kGeneticTrainers[] = "MLPGA TarnGA";
constexpr TTag kGeneticTags[] = {
    kTrainerTag.Of(kGeneticTrainers),
    kDataTag,
    {"generations", kLong, "how many are evaluated, the first included"},
    TTag{"terminating", kDouble, "breeding ends at this error"}.Or("0"),
    TTag{"elitism", kBoolean, "whether the best network lives on unchanged"}.Or("on"),
    TTag{"crossover", kLong, "places at which a child changes parents, any where negative"}.Or("1"),
    TTag{"mutation", kDouble, "probability with which a weight is drawn anew"}.Or("0.001"),
    TTag{"selection", kChoice, "parents: the better of two, or in proportion to fitness"}
        .Of("Tournament roulette")
        .Or("roulette"),
    TTag{"normalisation", kBoolean, "whether fitness is stretched to 0 to 1"}.Or("on"),
    kValidationTag,
    kPatienceTag.Or("all generations are run"),
    kFreezeTag,
    kSeedTag,
};

constexpr char kMapTrainers[] = "KohonenTrainer";
constexpr TTag kMapTags[] = {
    kTrainerTag.Of(kMapTrainers),
    kDataTag,
    {"epochs", kLong, "how often to go through the set"},
    {"LearningRate", kDouble, "share of the way to the inputs that a unit goes"},
    {"neighbourhood", kDoubles, "how far units learn with the winner along each dimension"},
    TTag{"RateFactor", kDouble, "what the rate is multiplied by before each epoch"}.Or(
        "0.01^(1/epochs)"),
    TTag{"RadiusFactor", kDouble, "likewise what a radius has beyond 1"}.Or("0.01^(1/epochs)"),
};

constexpr TForm kTrain[] = {
    {"", "descends the gradient of the error",
     "train alias teacher data d epochs 500 LearningRate 0.5 Momentum 0.9", kGradientTags,
     Train<TrainByGradient>, kGradientTrainers},
    {"", "breeds weights",
     "train alias breeder data d generations 200 mutation 0.05 crossover -1 seed 3", kGeneticTags,
     Train<TrainGenetically>, kGeneticTrainers},
    {"", "teaches a self-organising map",
     "train alias guide data d epochs 5 LearningRate 0.5 neighbourhood {4, 4}", kMapTags,
     Train<TrainMap>, kMapTrainers},
};

constexpr TTag kGetTrainedTags[] = {
    TTag{"source", kAlias, "the trainer"}.Of("BP TarnBP TarnLWF MLPGA TarnGA"),
    {"destination", kNewAlias, "the name of the network"},
};
constexpr TForm kGetTrained[] = {
    {"", "makes a copy of a trainer's network", "gettrained source teacher destination net2",
     kGetTrainedTags, GetTrained},
};

constexpr TCommand kCommands[] = {
    {"train", "has a trainer teach its network a data set", kTrain, FormByTrainer},
    {"gettrained", "takes the network out of a trainer", kGetTrained, FormByWord},
};

}  // namespace

const TFamily kTraining = {"training", kCommands};

}  // namespace kiln::commands
