#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "Interpreter/TCommand.h"

namespace kiln {

// Something in a line that its author cannot have meant, though the command reads it all the same.
struct TOddity {
  std::string fault;   // what is wrong
  std::string effect;  // what the line is taken for, where that is worth telling; else as `fault`
};

// The first oddity of a line that means this form of the command: a word that is no tag of it, a
// tag that is given twice or has no value, and a value that is not of the kind that the tag takes.
std::optional<TOddity> FindOddity(const TCommand& command, const TForm& form,
                                  std::string_view line);

// The one of `words` that `typed` may have been meant to be: the same but for the case of letters,
// or a letter or two away. Empty when none is near.
std::string_view NearestWord(std::string_view typed, std::span<const std::string_view> words);

}  // namespace kiln
