#include <algorithm>
#include <array>
#include <cmath>

#include "Bramble/Status.h"
#include "DataObject/Data.h"
#include "GA-Apps/GenTrain/TGenTrain.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/TrainLesson.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "Shared/Narrowing.h"
#include "Shared/Text.h"
#include "Tarn/TFrozenCentres.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

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

// Any other word than batch stands for pattern, as for the trainers that go by gradients.
bool IsBatch(const TCommandLine& line) {
  return EqualNoCase(Optional(line.Word("mode"), std::string_view("pattern")), "batch");
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
  const auto train = IsBatch(line) ? &TKohonenModule::TrainByBatch : &TKohonenModule::Train;
  (*trainer.*train)(lesson.set, rate, radii, epochs, rate_factor, radius_factor, lesson.observer);
  return kDone;
}

// --- All trainers ----------------------------------------------------------------------------

// Fails unless every number that the line gives is finite.
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

// Reads the tags of one kind of trainer, trains and gives the answer.
using TTraining = TAnswer (*)(const TCommandLine& line, const TLesson& lesson);

// Trains the trainer that the line names in its own way.
template <TTraining train>
TAnswer Train(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const TRegistryNode& trainer = RequiredEntry(interpreter, alias);
  const std::string_view set_alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, set_alias, " is not of type data");
  CheckFiniteTags(line);
  if (line.BooleanOfTag("watch").code == TReadCode::kNotABoolean) {
    Fail("bad argument to tag watch");
  }
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
    if (HasWord(form.kinds, kind)) return form;
  }
  Fail(alias, " is not a training object");
}

constexpr TTag kTrainerTag = {"alias", kAlias, "the trainer"};
constexpr TTag kDataTag = TTag{"data", kAlias, "the data set to be learned"}.Of("Data");

// The console reads it too.
constexpr TTag kWatchTag =
    TTag{"watch", kBoolean, "whether a terminal shows the curve of the errors"}.Or("off");

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
    kWatchTag,
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
    kWatchTag,
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
    TTag{"mode", kChoice, "units move with every row, or once an epoch to means of rows"}
        .Of("pattern batch")
        .Or("pattern"),
    TTag{"RateFactor", kDouble, "what the rate is multiplied by before each epoch"}.Or(
        "0.01^(1/epochs)"),
    TTag{"RadiusFactor", kDouble, "likewise what a radius has beyond 1"}.Or("0.01^(1/epochs)"),
    kWatchTag,
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
