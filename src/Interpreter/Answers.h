#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

// What commands answer, and how the values in it are written.
namespace kiln {

// The answer of a command that was carried out: its value, or none where "OK" says it all.
using TAnswer = std::optional<std::string>;

std::string AnswerFixed(double value);    // 8 decimals: a training error
std::string AnswerGeneral(double value);  // 8 significant digits

std::string_view AnswerBoolean(bool value);  // "true" or "false"
std::string_view AnswerSwitch(bool value);   // "on" or "off"

// A text of several lines as one: "; " between them, nothing before those that begin with four
// blanks or more, since they go on with the line before, and runs of blanks shortened to one.
std::string OneLine(std::string_view text);

// "{first, second}"; doubles with 12 significant digits.
std::string AnswerArray(std::span<const double> values);
std::string AnswerArray(std::span<const int> values);
std::string AnswerArray(std::span<const std::string> words);

}  // namespace kiln
