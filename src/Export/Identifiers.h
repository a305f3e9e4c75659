#pragma once

#include <set>
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

// Identifiers of the fuzzy control language, whose case does not count, each given once.
class TFclNames {
 public:
  // `name` as an identifier that is no word of the language and differs from all given before; a
  // number behind it tells names apart that come out the same.
  std::string Take(std::string_view name);

 private:
  std::set<std::string> taken_;  // in lower case
};

}  // namespace kiln
