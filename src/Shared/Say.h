#pragma once

#include <functional>
#include <string_view>

namespace kiln {

// Tells the user something that is not the answer of a command. The text goes to the standard
// output at once, so that it can be read while the command still runs. Apart from what is saved to
// "/dev/stdout", nothing else in the library writes there, nor to the standard error.

// Something that only tells how far the work has come: the number of an epoch.
void Say(std::string_view text);

// A line to be read: a warning, the word at which a rule breaks off.
void SayLine(std::string_view text);

// A line that goes to the standard error: what a programming error is about.
void SayError(std::string_view text);

enum class TSaying { kPassing, kLine };

// From now on hands all of them to `take` in place of the standard streams; nothing ends that.
void HaveSaid(std::function<void(std::string_view text, TSaying saying)> take);

}  // namespace kiln
