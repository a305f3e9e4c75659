#pragma once

#include <cstddef>
#include <string>

#include "Plot/TPicture.h"

namespace kiln {

// What a picture of characters may be made of. Unicode has dots, eight to a character, and shades.
enum class TCharacters { kAscii, kUnicode };

// Draws a picture in lines of at most `columns` characters, at least 40.
std::string DrawText(const TPicture& picture, std::size_t columns, TCharacters characters);

// A curve alone, without a title, in exactly so many lines.
std::string DrawCurve(const TPanel& panel, std::size_t columns, std::size_t lines,
                      TCharacters characters);

}  // namespace kiln
