#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "Interpreter/Answers.h"
#include "Interpreter/TInterpreter.h"
#include "NeuralNets/Training/TValidation.h"

namespace kiln {

class Data;
class TBasicNetwork;
class TCommandLine;
class TFrozenCentres;

// What the forms of "train" share.
namespace commands {

// A trainer and the set that it is to learn, with their aliases.
struct TLesson {
  std::string_view trainer_alias;
  const TRegistryNode& trainer;
  std::string_view set_alias;
  const Data& set;
  const TEpochObserver& observer;
  const TObjectRegistry& registry;
};

// Fails unless all inputs of the set are numbers that weights can take up.
void CheckFiniteInputs(std::string_view alias, const Data& set);

// Fails unless the set has rows, of finite numbers, and fits the trainer's network.
void CheckFits(const TLesson& lesson, std::string_view alias, const Data& set,
               const TBasicNetwork& network);

// The validation set that the line names, which the registry keeps; nothing where it names none.
std::optional<TValidationSet> NamedValidation(const TCommandLine& line, const TLesson& lesson,
                                              const TBasicNetwork& network);

// Freezes the centres that the line names for as long as the result lives; null where it names
// none.
std::unique_ptr<TFrozenCentres> FreezeCentres(const TCommandLine& line, const TLesson& lesson);

// "train" of a gradient trainer. TrainGradient.cpp.
TAnswer TrainByGradient(const TCommandLine& line, const TLesson& lesson);

}  // namespace commands
}  // namespace kiln
