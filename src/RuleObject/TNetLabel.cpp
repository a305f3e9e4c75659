#include "RuleObject/TNetLabel.h"

#include <cstddef>
#include <numeric>
#include <utility>

#include "Shared/TException.h"

namespace kiln {

namespace {

std::vector<TNetLabel::TName> NoNames(const std::vector<int>& counts) {
  return std::vector<TNetLabel::TName>(std::accumulate(
      counts.begin(), counts.end(), std::size_t{0},
      [](std::size_t sum, int count) { return sum + static_cast<std::size_t>(count); }));
}

// The name of that number in `names`, which may be constant.
template <typename TNames>
auto& NameAt(TNames& names, int number, const char* what, const char* function) {
  if (number < 0 || static_cast<std::size_t>(number) >= names.size()) {
    throw TException(std::string(what) + " number out of bounds", "Bad Parameter", function);
  }
  return names[static_cast<std::size_t>(number)];
}

}  // namespace

TNetLabel::TNetLabel(std::vector<int> input_mf, std::vector<int> output_mf)
    : input_mf_(std::move(input_mf)),
      output_mf_(std::move(output_mf)),
      input_names_(input_mf_.size()),
      condition_names_(NoNames(input_mf_)),
      output_names_(output_mf_.size()),
      action_names_(NoNames(output_mf_)) {}

void TNetLabel::SetInputName(int number, std::string name) {
  NameAt(input_names_, number, "Input", "TNetLabel::SetInputName") = std::move(name);
}

void TNetLabel::SetConditionName(int number, std::string name) {
  NameAt(condition_names_, number, "Condition", "TNetLabel::SetConditionName") = std::move(name);
}

void TNetLabel::SetOutputName(int number, std::string name) {
  NameAt(output_names_, number, "Output", "TNetLabel::SetOutputName") = std::move(name);
}

void TNetLabel::SetActionName(int number, std::string name) {
  NameAt(action_names_, number, "Action", "TNetLabel::SetActionName") = std::move(name);
}

const TNetLabel::TName& TNetLabel::GetInputName(int number) const {
  return NameAt(input_names_, number, "Input", "TNetLabel::GetInputName");
}

const TNetLabel::TName& TNetLabel::GetConditionName(int number) const {
  return NameAt(condition_names_, number, "Condition", "TNetLabel::GetConditionName");
}

// The failure carries the name of the setter, which programs that drive the console know.
const TNetLabel::TName& TNetLabel::GetOutputName(int number) const {
  return NameAt(output_names_, number, "Output", "TNetLabel::SetOutputName");
}

const TNetLabel::TName& TNetLabel::GetActionName(int number) const {
  return NameAt(action_names_, number, "Action", "TNetLabel::GetActionName");
}

TNetLabel MakeDefaultLabels(std::vector<int> input_mf, std::vector<int> output_mf) {
  TNetLabel labels(std::move(input_mf), std::move(output_mf));
  int condition = 0;
  for (int input = 0; input < labels.NumInputs(); ++input) {
    labels.SetInputName(input, "Input" + LetterCode(input));
    const int terms = labels.InputMF()[static_cast<std::size_t>(input)];
    for (int term = 0; term < terms; ++term) labels.SetConditionName(condition++, LetterCode(term));
  }
  int action = 0;
  for (int output = 0; output < labels.NumOutputs(); ++output) {
    labels.SetOutputName(output, "Output" + LetterCode(output));
    const int terms = labels.OutputMF()[static_cast<std::size_t>(output)];
    for (int term = 0; term < terms; ++term) labels.SetActionName(action++, LetterCode(term));
  }
  return labels;
}

std::string LetterCode(int n) {
  constexpr int kLetters = 26;
  constexpr int kCodes = kLetters * kLetters * kLetters * kLetters * kLetters;
  std::string code;
  n %= kCodes;
  do {
    code.insert(code.begin(), static_cast<char>('A' + n % kLetters));
    n /= kLetters;
  } while (n > 0);
  return code;
}

}  // namespace kiln
