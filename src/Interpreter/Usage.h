#pragma once

#include <string>
#include <string_view>

#include "Interpreter/TCommand.h"

// What `help` tells of the table of commands. Texts of several lines end without a line end.
namespace kiln {

// What is typed at the prompt and is no command.
inline constexpr std::string_view kAtThePrompt =
    "quit ends the session; !! repeats the last command; @ls asks the shell";

// The commands by family, and how to learn more.
std::string Overview();

// What a command is for, and its forms: all of each where there are few or where they have no words
// to ask for them by, otherwise their first lines.
std::string Describe(const TCommand& command);

// How a form is typed, what its tags mean and an example.
std::string Describe(const TCommand& command, const TForm& form);

}  // namespace kiln
