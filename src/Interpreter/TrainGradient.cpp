#include <optional>
#include <string>

#include "Interpreter/Checks.h"
#include "Interpreter/NetworkObjects.h"
#include "Interpreter/TrainLesson.h"
#include "KQmessage/TKQstructure.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/Training/TTrainModule.h"
#include "Shared/NumberFormat.h"
#include "Shared/Text.h"
#include "Tarn/TFrozenCentres.h"

namespace kiln::commands {

namespace {

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

}  // namespace

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

}  // namespace kiln::commands
