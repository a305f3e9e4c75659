#include "Interpreter/Answers.h"

#include "Shared/NumberFormat.h"

namespace kiln {

namespace {

template <typename T, typename TFormat>
std::string Braced(std::span<const T> values, TFormat format) {
  std::string text = "{";
  const char* gap = "";
  for (const T& value : values) {
    text += gap;
    text += format(value);
    gap = ", ";
  }
  text += '}';
  return text;
}

}  // namespace

std::string OneLine(std::string_view text) {
  std::string line(text.substr(0, text.find('\n')));
  if (line.size() == text.size()) return line;
  for (std::size_t at = line.size(); at < text.size(); ++at) {
    if (text.substr(at).starts_with("\n    ")) continue;  // goes on, behind a blank
    if (text[at] == '\n' && !line.ends_with("; ")) line += "; ";
    if (text[at] == '\n' || (text[at] == ' ' && line.ends_with(' '))) continue;
    line += text[at];
  }
  return line;
}

std::string AnswerFixed(double value) {
  return FormatFixed(value, 8);
}

std::string AnswerGeneral(double value) {
  return FormatGeneral(value, 8);
}

std::string_view AnswerBoolean(bool value) {
  return value ? "true" : "false";
}

std::string_view AnswerSwitch(bool value) {
  return value ? "on" : "off";
}

std::string AnswerArray(std::span<const double> values) {
  return Braced(values, [](double value) { return FormatGeneral(value, 12); });
}

std::string AnswerArray(std::span<const int> values) {
  return Braced(values, [](int value) { return std::to_string(value); });
}

std::string AnswerArray(std::span<const std::string> words) {
  return Braced(words, [](const std::string& word) { return std::string_view(word); });
}

}  // namespace kiln
