#include "Shared/NumberFormat.h"

#include <array>
#include <charconv>

namespace kiln {

namespace {

// The largest double has 309 digits in front of the point; 400 leaves room for the decimals of
// every format in use.
using TNumberText = std::array<char, 400>;

std::string Format(double value, std::chars_format format, int precision) {
  TNumberText text;
  const auto result =
      std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
  return {text.data(), result.ptr};
}

}  // namespace

std::string FormatFixed(double value, int decimals) {
  return Format(value, std::chars_format::fixed, decimals);
}

std::string FormatGeneral(double value, int precision) {
  return Format(value, std::chars_format::general, precision);
}

void AppendShortest(std::string& text, double value) {
  TNumberText number;
  const auto result = std::to_chars(number.data(), number.data() + number.size(), value);
  text.append(number.data(), result.ptr);
}

}  // namespace kiln
