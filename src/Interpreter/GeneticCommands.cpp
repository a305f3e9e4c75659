#include <array>
#include <cmath>
#include <limits>

#include "Bramble/Status.h"
#include "GA-Apps/GenTrain/TMLPGA.h"
#include "GA-Apps/GenTrain/TTarnGA.h"
#include "Interpreter/Answers.h"
#include "Interpreter/Checks.h"
#include "Interpreter/CreateCommands.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/Training.h"
#include "Shared/Narrowing.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

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

}  // namespace

int CreateGATrainer(TInterpreter& interpreter, const TCommandLine& line) {
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

int TrainGenetically(TInterpreter& interpreter, const TCommandLine& line, const TLesson& lesson) {
  const double target_error = Optional(line.Double("terminating"), 0.0);
  const RunSettings settings = ReadSettings(line);
  const std::shared_ptr<TGenTrain> trainer = AsGeneticTrainer(lesson.trainer);
  CheckFits(lesson, trainer->Network());
  StartRandom(line);
  trainer->Initialise();
  const std::array sets = {&lesson.set};
  interpreter.SetResult(AnswerGeneral(trainer->Train(settings, target_error, sets)));
  return kValue;
}

}  // namespace kiln::commands
