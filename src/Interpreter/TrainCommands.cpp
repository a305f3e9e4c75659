#include "DataObject/Data.h"
#include "Interpreter/Answers.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/Training.h"
#include "KQmessage/TKQstructure.h"
#include "NeuralNets/Training/TTrainModule.h"
#include "Shared/NumberFormat.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

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

int TrainByGradient(TInterpreter& interpreter, const TCommandLine& line, const TLesson& lesson) {
  int epochs = AtLeast(0, Required(line.Long("epochs"), "tag epochs not found"), "epochs");
  const std::shared_ptr<TTrainModule> trainer = AsGradientTrainer(lesson.trainer);
  TKQstructure params = GradientParams(line, !lesson.trainer.As<TTarnBP>());
  CheckFits(lesson, std::as_const(*trainer).Network());
  interpreter.SetResult(AnswerFixed(trainer->Train(lesson.set, params, epochs)));
  return kValue;
}

// How the object of an entry is trained; null when it is no trainer.
TTraining TrainingOf(const TRegistryNode& node) {
  if (AsGradientTrainer(node)) return TrainByGradient;
  if (AsGeneticTrainer(node)) return TrainGenetically;
  if (node.As<TKohonenModule>()) return TrainMap;
  return nullptr;
}

}  // namespace

void CheckFits(const TLesson& lesson, const TBasicNetwork& network) {
  const std::string owner = "the network of " + std::string(lesson.trainer_alias);
  RequireColumns(lesson.set_alias, lesson.set.Inputs(), "inputs", owner, network.NumInputs());
  RequireColumns(lesson.set_alias, lesson.set.Outputs(), "outputs", owner, network.NumOutputs());
  if (lesson.set.DataRows() == 0) Fail(lesson.set_alias, " has no rows");
}

int Train(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const TRegistryNode& trainer = RequiredEntry(interpreter, alias);
  const TTraining train = TrainingOf(trainer);
  if (!train) Fail(alias, " is not a training object");
  const std::string_view set_alias = RequiredAlias(line, "data");
  const auto set = RequiredObject<Data>(interpreter, set_alias, " is not of type data");
  const int code = train(interpreter, line, {alias, trainer, set_alias, *set});
  set->ResetCursor();
  return code;
}

int GetTrained(TInterpreter& interpreter, const TCommandLine& line) {
  const TRegistryNode& source = RequiredEntry(interpreter, RequiredAlias(line, "source"));
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  const TBasicNetwork* network = TrainedNetwork(source);
  if (!network) Fail("cannot gettrained from this type of object");
  InsertNetwork(interpreter, destination, network->Clone());
  return kDone;
}

}  // namespace kiln::commands
