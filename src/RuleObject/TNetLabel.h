#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kiln {

// Words for the variables of a network and for their fuzzy terms, the membership functions of a
// Tarn: those of its inputs are the conditions, those of its outputs the actions. Conditions are
// numbered across all inputs, those of the first input first, and so are actions across outputs.
// Every name is missing until it is set.
class TNetLabel {
 public:
  using TName = std::optional<std::string>;

  // Takes the number of terms of each input and of each output: 0 where a variable has none.
  // REQUIRES: no number is negative.
  TNetLabel(std::vector<int> input_mf, std::vector<int> output_mf);

  // The terms of each variable.
  const std::vector<int>& InputMF() const { return input_mf_; }
  const std::vector<int>& OutputMF() const { return output_mf_; }

  int NumInputs() const { return static_cast<int>(input_names_.size()); }
  int NumConditions() const { return static_cast<int>(condition_names_.size()); }
  int NumOutputs() const { return static_cast<int>(output_names_.size()); }
  int NumActions() const { return static_cast<int>(action_names_.size()); }

  // All throw TException "... number out of bounds" ("Bad Parameter") for a number that is negative
  // or not below the count.
  void SetInputName(int number, std::string name);
  void SetConditionName(int number, std::string name);
  void SetOutputName(int number, std::string name);
  void SetActionName(int number, std::string name);
  const TName& GetInputName(int number) const;
  const TName& GetConditionName(int number) const;
  const TName& GetOutputName(int number) const;
  const TName& GetActionName(int number) const;

 private:
  std::vector<int> input_mf_;
  std::vector<int> output_mf_;
  std::vector<TName> input_names_;
  std::vector<TName> condition_names_;
  std::vector<TName> output_names_;
  std::vector<TName> action_names_;
};

// Names of the form InputA, InputB, ... and OutputA, OutputB, ...; the terms of each variable are
// named A, B, ... REQUIRES: no number is negative.
TNetLabel MakeDefaultLabels(std::vector<int> input_mf, std::vector<int> output_mf);

// `n` as a numeral of base 26 with the digits A (0) to Z: A, B, ..., Z, BA, BB, ... Only the last
// five digits are kept. REQUIRES: n >= 0.
std::string LetterCode(int n);

}  // namespace kiln
