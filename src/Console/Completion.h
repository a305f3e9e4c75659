#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Interpreter/TInterpreter.h"

namespace kiln {

// What the word that is being typed can become.
struct TCompletion {
  std::size_t begin = 0;           // where it begins
  std::vector<std::string> words;  // in order; each with what follows it, a blank or a bracket
};

// Completes a line that has been typed up to its end: command words, their forms, tags that are not
// there yet, words and aliases that a tag takes, and names of files behind a bracket.
TCompletion Complete(const TInterpreter& interpreter, std::string_view line);

}  // namespace kiln
