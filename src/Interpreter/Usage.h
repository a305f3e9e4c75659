#pragma once

#include <string>
#include <string_view>

#include "Interpreter/TCommand.h"

// What `help` tells of the table of commands. Texts of several lines end without a line end.
namespace kiln {

// The commands by family, and how to learn more.
std::string Overview();

// What a command is for, and its forms: all of each where there are few, otherwise their first
// lines.
std::string Describe(const TCommand& command);

// How a form is typed, what its tags mean and an example.
std::string Describe(const TCommand& command, const TForm& form);

}  // namespace kiln
