#pragma once

#include <string>
#include <string_view>

namespace kiln {

// `text` with the letters A..Z in lower case; bytes beyond ASCII stay as they are.
std::string FoldCase(std::string_view text);

// Whether two texts are the same but for the case of their letters.
bool EqualNoCase(std::string_view left, std::string_view right);

// Whether `left` stands before `right` once both are in lower case. Compares bytes without sign.
bool LessNoCase(std::string_view left, std::string_view right);

// `text` without the space characters at its ends. Tabs are not blanks on the command line.
std::string_view TrimBlanks(std::string_view text);

}  // namespace kiln
