#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

namespace kiln::Filer {

// Takes some of the numbers of a table, the first of which is the one with this index. Several
// workers call it at a time, each for other numbers.
using TNumberTaker = std::function<void(std::size_t index, std::span<const double> numbers)>;

// Reads `count` numbers with nothing but blanks and line ends between them from the start of a
// text, as the pieces of a team. Returns how many characters they take; nothing where the text has
// anything else or fewer numbers, in which case some may have been taken.
std::optional<std::size_t> ReadNumbers(std::string_view text, std::size_t count,
                                       const TNumberTaker& take);

}  // namespace kiln::Filer
