#pragma once

#include <string>
#include <string_view>

// Names that users chose, as other languages can bear them.
namespace kiln {

// `name` as an identifier of C: what no identifier may hold becomes "_", in front of what none may
// start with stands "n_", and what the language or its library calls its own gets a "_" behind it.
std::string CIdentifier(std::string_view name);

// `text` as it can stand inside a comment of C: on one line, without the signs that end a comment
// or mean something in one.
std::string CommentText(std::string_view text);

// `name` as an identifier of the fuzzy control language: whatever no identifier may hold becomes
// one
// "_" between what it stands between, in front of what none may be, or start with, stands "n_".
// Case does not count in the language.
std::string FclIdentifier(std::string_view name);

}  // namespace kiln
