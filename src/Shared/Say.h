#pragma once

#include <string_view>

namespace kiln {

// Tells the user something that is not the answer of a command: the number of an epoch, a warning,
// the word at which a rule breaks off. The text goes to the standard output at once, so that it can
// be read while the command still runs; SayLine ends the line. Apart from what is saved to
// "/dev/stdout", nothing else in the library writes there.
void Say(std::string_view text);
void SayLine(std::string_view text);

}  // namespace kiln
