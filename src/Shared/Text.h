#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <ranges>
#include <string>
#include <string_view>

namespace kiln {

// Texts are compared by bytes. "In any case" means that the letters A..Z count as a..z; bytes
// beyond ASCII stand for themselves.

// `text` with the letters A..Z in lower case.
std::string FoldCase(std::string_view text);

// Whether two texts are the same in any case.
bool EqualNoCase(std::string_view left, std::string_view right);

// Whether `left` stands before `right` once both are in lower case. Compares bytes without sign.
bool LessNoCase(std::string_view left, std::string_view right);

// The first entry of `table` whose name is `name` in any case, or null. `name_of` gives the name of
// an entry, for example a pointer to its member; without it entries are names themselves.
template <typename TTable, typename TNameOf = std::identity>
auto* FindNoCase(const TTable& table, std::string_view name, TNameOf name_of = {}) {
  const auto found = std::ranges::find_if(
      table,
      [name](std::string_view known) {
        return known.size() == name.size() && EqualNoCase(known, name);
      },
      name_of);
  return found == std::ranges::end(table) ? nullptr : &*found;
}

// Whether `word` stands in `words`, which are separated by single blanks, in any case.
bool HasWord(std::string_view words, std::string_view word);

// `text` with "^[" and the like in the place of control characters, line ends and tabs excepted, so
// that a terminal that it is written to shows it and does nothing else.
std::string Printable(std::string_view text);

// "1 row", "2 rows".
std::string Counted(std::size_t count, std::string_view noun);

// `text` without the space characters at its ends. Tabs are not blanks on the command line.
std::string_view TrimBlanks(std::string_view text);

}  // namespace kiln
