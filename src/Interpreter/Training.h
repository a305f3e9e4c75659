#pragma once

#include <string_view>

#include "DataObject/Data.h"
#include "Interpreter/TCommandLine.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {
class TBasicNetwork;
}

// What "train" does with each kind of trainer.
namespace kiln::commands {

// A trainer and the set that it is to learn, with their aliases.
struct TLesson {
  std::string_view trainer_alias;
  const TRegistryNode& trainer;
  std::string_view set_alias;
  const Data& set;
};

// Reads the tags of one kind of trainer, trains and gives the answer.
using TTraining = int (*)(TInterpreter& interpreter, const TCommandLine& line,
                          const TLesson& lesson);

// Fails unless the set has rows and fits the trainer's network.
void CheckFits(const TLesson& lesson, const TBasicNetwork& network);

// GeneticCommands.cpp
int TrainGenetically(TInterpreter& interpreter, const TCommandLine& line, const TLesson& lesson);

// KohonenCommands.cpp
int TrainMap(TInterpreter& interpreter, const TCommandLine& line, const TLesson& lesson);

}  // namespace kiln::commands
