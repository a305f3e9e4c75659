#pragma once

#include <span>
#include <string>
#include <string_view>

// How the values of answers are written.
namespace kiln {

std::string AnswerFixed(double value);    // 8 decimals: a training error
std::string AnswerGeneral(double value);  // 8 significant digits

std::string_view AnswerBoolean(bool value);  // "true" or "false"
std::string_view AnswerSwitch(bool value);   // "on" or "off"

// "{first, second}"; doubles with 12 significant digits.
std::string AnswerArray(std::span<const double> values);
std::string AnswerArray(std::span<const int> values);
std::string AnswerArray(std::span<const std::string> words);

}  // namespace kiln
