#include <algorithm>
#include <array>
#include <cmath>

#include "Bramble/Status.h"
#include "DataObject/Data.h"
#include "GA-Apps/GenTrain/TGenTrain.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "KQmessage/TKQstructure.h"
#include "NeuralNets/Maps/TKohonenModule.h"
#include "NeuralNets/Training/TTrainModule.h"
#include "Shared/Narrowing.h"
#include "Shared/NumberFormat.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

// A trainer and the set that it is to learn, with their aliases.
struct TLesson {
  std::string_view trainer_alias;
  const TRegistryNode& trainer;
  std::string_view set_alias;
  const Data& set;
  const TEpochObserver& observer;
};

// Reads the tags of one kind of trainer, trains and gives the answer.
using TTraining = TAnswer (*)(const TCommandLine& line, const TLesson& lesson);

// Fails unless the set has rows and fits the trainer's network.
void CheckFits(const TLesson& lesson, const TBasicNetwork& network) {
  const std::string owner = "the network of " + std::string(lesson.trainer_alias);
  RequireColumns(lesson.set_alias, lesson.set.Inputs(), "inputs", owner, network.NumInputs());
  RequireColumns(lesson.set_alias, lesson.set.Outputs(), "outputs", owner, network.NumOutputs());
  if (lesson.set.DataRows() == 0) Fail(lesson.set_alias, " has no rows");
}

// --- Gradient trainers -----------------------------------------------------------------------

// A number with all of its digits, where six decimals would make nothing of a small one.
std::string Exact(double value) {
  std::string text;
  AppendShortest(text, value);
  return text;
}

// The parameters of a gradient trainer. Only one that `forgets` takes a decay of the weights.
TKQstructure GradientParams(const TCommandLine& line, bool forgets) {
  TKQstructure params("Params");
  const double learning_rate = Optional(line.Double("LearningRate"), 0.8);
  params.SetDouble("LearningRate", learning_rate);
  params.SetDouble("Momentum", Optional(line.Double("Momentum"), 0.5));
  params.SetString("Threshold", Exact(Optional(line.Double("terminating"), 0.0)));
  const TReading<double> decay = line.Double("decay");
  if (forgets && decay.code == TReadCode::kRead) {
    auto penalty = std::make_unique<TKQstructure>("LWF");
    penalty->SetString("ForgettingRate", Exact(decay.value));
    penalty->SetDouble("LearningRate", learning_rate);
    params.SetValue("WeightPenalty", std::move(penalty));
  }
  const std::string_view mode = Optional(line.Word("mode"), std::string_view("pattern"));
  if (EqualNoCase(mode, "batch")) params.SetString("batch", "true");
  return params;
}

TAnswer TrainByGradient(const TCommandLine& line, const TLesson& lesson) {
  int epochs = AtLeast(0, Required(line.Long("epochs"), "tag epochs not found"), "epochs");
  const std::shared_ptr<TTrainModule> trainer = AsGradientTrainer(lesson.trainer);
  TKQstructure params = GradientParams(line, !lesson.trainer.As<TTarnBP>());
  CheckFits(lesson, std::as_const(*trainer).Network());
  return AnswerFixed(trainer->Train(lesson.set, params, epochs, lesson.observer));
}

// --- Genetic trainers ------------------------------------------------------------------------

RunSettings ReadSettings(const TCommandLine& line) {
  RunSettings settings;
  settings.NdxElites = Optional(line.Boolean("elitism"), true) ? 1 : 0;
  settings.IntCrossover = ToInt32(Optional(line.Long("crossover"), std::int64_t{1}));
  settings.FltMutation = ToSingle(Optional(line.Double("mutation"), 0.001));
  const std::string_view selection = Optional(line.Word("selection"), std::string_view());
  settings.IntSelection =
      EqualNoCase(selection, "Tournament") ? kTournamentSelection : kRouletteSelection;
  settings.BolScale = Optional(line.Boolean("normalisation"), true);
  settings.IntGenerations =
      AtLeast(0, Required(line.Long("generations"), "tag generations not found"), "generations");
  return settings;
}

TAnswer TrainGenetically(const TCommandLine& line, const TLesson& lesson) {
  const double target_error = Optional(line.Double("terminating"), 0.0);
  const RunSettings settings = ReadSettings(line);
  const std::shared_ptr<TGenTrain> trainer = AsGeneticTrainer(lesson.trainer);
  CheckFits(lesson, trainer->Network());
  StartRandom(line);
  trainer->Initialise();
  const std::array sets = {&lesson.set};
  return AnswerGeneral(trainer->Train(settings, target_error, sets, lesson.observer));
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
  trainer->Train(lesson.set, rate, radii, epochs, rate_factor, radius_factor, lesson.observer);
  return kDone;
}

// --- All trainers ----------------------------------------------------------------------------

// How the object of an entry is trained; null when it is no trainer.
TTraining TrainingOf(const TRegistryNode& node) {
  if (AsGradientTrainer(node)) return TrainByGradient;
  if (AsGeneticTrainer(node)) return TrainGenetically;
  if (node.As<TKohonenModule>()) return TrainMap;
  return nullptr;
}

}  // namespace

TAnswer Train(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const TRegistryNode& trainer = RequiredEntry(interpreter, alias);
  const TTraining train = TrainingOf(trainer);
  if (!train) Fail(alias, " is not a training object");
  const std::string_view set_alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, set_alias, " is not of type data");
  TAnswer answer = train(line, {alias, trainer, set_alias, *set, interpreter.Observer()});
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

}  // namespace kiln::commands
