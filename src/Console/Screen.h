#pragma once

#include <cstddef>
#include <string_view>

// How much room there is on a terminal, and how much of it a text takes: none, one or two columns a
// character, as the locale has it.
namespace kiln::Screen {

// The columns of the terminal on the descriptor; 80 where it does not tell.
std::size_t Columns(int descriptor);

// Its lines, likewise; 24.
std::size_t Lines(int descriptor);

// Whether the user's locale is one of UTF-8, be it installed here or not.
bool HasUnicode();

std::size_t Width(std::string_view text);

// The start of a text, up to `columns` wide and to its first control character.
std::string_view Fitting(std::string_view text, std::size_t columns);

}  // namespace kiln::Screen
