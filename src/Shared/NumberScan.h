#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kiln {

// The number at the start of `text`, as scanf's "%ld" and "%lf" read it: blanks and a sign in front
// are accepted, whatever follows the number is passed over, so that "12abc" is 12. Nothing when
// `text` does not start with a number.

// A decimal integer. Beyond 64 bits it becomes the nearest 64-bit one.
std::optional<std::int64_t> ScanInteger(std::string_view text);

// Whether a word is nothing but the decimal digits of an integer, with or without a sign.
bool IsWholeNumber(std::string_view word);

// A place among `count`, from 0 on. Unlike the others `text` must be nothing but its decimal
// digits.
std::optional<std::size_t> ScanPlace(std::string_view text, std::size_t count);

// A decimal or, behind "0x", a hexadecimal number, "inf", "infinity" or "nan" in any case; infinite
// beyond the range of doubles.
std::optional<double> ScanNumber(std::string_view text);

}  // namespace kiln
