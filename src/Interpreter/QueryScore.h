#pragma once

#include "Interpreter/Answers.h"
#include "Interpreter/TInterpreter.h"

namespace kiln {

class TCommandLine;

// The forms of "query" that tell how well a network answers a data set.
namespace commands {

TAnswer Score(TInterpreter& interpreter, const TCommandLine& line);
TAnswer Confusion(TInterpreter& interpreter, const TCommandLine& line);

}  // namespace commands
}  // namespace kiln
