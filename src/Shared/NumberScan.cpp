#include "Shared/NumberScan.h"

#include <charconv>
#include <cstdlib>
#include <limits>
#include <string>
#include <system_error>

namespace kiln {

namespace {

// `text` from its first digit or minus sign on: without blanks in front and without a plus sign.
std::string_view SkipToNumber(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\n\v\f\r");
  if (begin == std::string_view::npos) return {};
  text.remove_prefix(begin);
  if (text.front() != '+') return text;
  text.remove_prefix(1);
  return text.starts_with('-') ? std::string_view{} : text;
}

// The number that std::from_chars refused; it does not tell too large from too small.
double ScanBeyondRange(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

// The hexadecimal number at the start of `text`, "0x" with or without a minus sign, as far as there
// is one; otherwise the 0 in front of the x.
double ScanHexadecimal(std::string_view text) {
  const bool negative = text.front() == '-';
  text.remove_prefix(negative ? 3 : 2);
  double value = 0.0;
  if (!text.starts_with('-')) {
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, value, std::chars_format::hex);
    if (error == std::errc::result_out_of_range) {
      value = ScanBeyondRange("0x" + std::string(text.data(), end));
    }
  }
  return negative ? -value : value;
}

}  // namespace

std::optional<std::int64_t> ScanInteger(std::string_view text) {
  text = SkipToNumber(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    using TLimits = std::numeric_limits<std::int64_t>;
    return text.front() == '-' ? TLimits::min() : TLimits::max();
  }
  return value;
}

bool IsWholeNumber(std::string_view word) {
  if (word.starts_with('-') || word.starts_with('+')) word.remove_prefix(1);
  return !word.empty() && word.find_first_not_of("0123456789") == word.npos;
}

std::optional<std::size_t> ScanPlace(std::string_view text, std::size_t count) {
  std::size_t place = 0;
  const char* const last = text.data() + text.size();
  const auto [end, error] = std::from_chars(text.data(), last, place);
  if (error != std::errc() || end != last || place >= count) return std::nullopt;
  return place;
}

std::optional<double> ScanNumber(std::string_view text) {
  // Most numbers of a file have neither blanks nor a plus sign in front.
  if (text.empty() || text.front() < '-') text = SkipToNumber(text);
  const char* const last = text.data() + text.size();
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), last, value);
  if (error == std::errc::invalid_argument) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    return ScanBeyondRange(std::string(text.data(), end));
  }
  const bool only_zero = value == 0.0 && end[-1] == '0' && end - text.data() <= 2;
  if (only_zero && end != last && (*end == 'x' || *end == 'X')) return ScanHexadecimal(text);
  return value;
}

}  // namespace kiln
