#pragma once

#include <string>
#include <string_view>

#include "Interpreter/TInterpreter.h"

// Remarks for a person at a terminal, each a line; empty where there is nothing to remark.
namespace kiln {

// On a line that is about to be carried out: a word that may be misspelt, or something odd that the
// command will pass over.
std::string HintOn(const TInterpreter& interpreter, std::string_view text);

// On a line that has succeeded: how many rules it has made.
std::string HintBehind(const TInterpreter& interpreter, std::string_view text);

}  // namespace kiln
