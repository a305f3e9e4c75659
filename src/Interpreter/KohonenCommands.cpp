#include <algorithm>
#include <cmath>

#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/CreateCommands.h"
#include "Interpreter/Training.h"
#include "NeuralNets/Maps/TKohonenModule.h"

namespace kiln::commands {

namespace {

// The factor that brings the learning rate, and what a radius has beyond 1, down to a hundredth
// within all epochs, or within ten where there are fewer.
double DefaultFactor(int epochs) {
  return std::pow(0.01, 1.0 / std::max(epochs, 10));
}

}  // namespace

int CreateKohonen(TInterpreter& interpreter, const TCommandLine& line) {
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

int CreateKohonenTrainer(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view name = RequiredAlias(line, "network");
  const auto map = RequiredObject<TKohonenNetwork>(interpreter, name, " is not a Kohonen network");
  interpreter.Insert({alias, std::make_unique<TKohonenModule>(map)});
  return kDone;
}

int TrainMap(TInterpreter&, const TCommandLine& line, const TLesson& lesson) {
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
  trainer->Train(lesson.set, rate, radii, epochs, rate_factor, radius_factor);
  return kDone;
}

int Map(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto map = RequiredObject<TKohonenNetwork>(interpreter, name, " is not a Kohonen network");
  const std::string_view input = RequiredAlias(line, "input");
  const auto set = RequiredObject<Data>(interpreter, input, " is not of type Data");
  const std::string_view output = RequiredNewAlias(interpreter, line, "output");
  RequireColumns(input, set->Inputs(), "inputs", name, map->NumInputs());
  interpreter.Insert({output, map->RecallCoordinates(set.get())});
  set->ResetCursor();
  return kDone;
}

}  // namespace kiln::commands
