#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kiln {

// `text` as UTF-8 that can be drawn: a blank in the place of each control character, a question
// mark in that of each byte that belongs to no character, and dots for what is beyond `most`
// columns. REQUIRES: most > 0.
std::string Legible(std::string_view text, std::size_t most);

// The characters of a text that is UTF-8.
std::u32string Characters(std::string_view text);
std::string Utf8(std::u32string_view characters);

// How many columns a character, or a text, takes where each has its cell, as on a terminal: two for
// the wide ones, those of East Asia and emoji.
std::size_t WidthOf(char32_t character);
std::size_t WidthOf(std::u32string_view characters);

}  // namespace kiln
