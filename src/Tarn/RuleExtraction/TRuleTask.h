#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "DataObject/Data.h"
#include "Tarn/RuleExtraction/TFlatRule.h"
#include "Tarn/TMFGroups.h"
#include "Tarn/TTarn.h"

namespace kiln {

// What a data set asks of rules over the terms of a Tarn, in columns of a value for each row,
// oldest first. Columns have room for whole registers (PaddedSize).
class TRuleTask {
 public:
  // Has a contrast for each term that a condition of the rules names. REQUIRES: the set fits the
  // network and has rows; there are the terms that the rules name.
  TRuleTask(const TTarn& terms, const Data& data, const TFlatRules& rules);

  std::size_t Rows() const { return rows_; }
  std::size_t NumOutputs() const { return actions_.NumVariables(); }

  // The terms of the outputs, and their centres.
  const TMFGroups& Actions() const { return actions_; }
  double Centre(std::size_t action) const { return centres_[action]; }

  // How far an input is the term of the condition rather than any other: its membership in the term
  // less that in the others. A condition adds its degree times this to the net input of its rule.
  // REQUIRES: the rules given name the term.
  std::span<const double> Contrast(const TRuleAtom& condition) const {
    return contrasts_[ConditionOf(condition)];
  }

  // What the set expects of an output.
  std::span<const double> Expected(std::size_t output) const { return expected_[output]; }

  // The root mean square error of answering every row with the means of the outputs.
  double ErrorOfMeans() const;

 private:
  std::size_t ConditionOf(const TRuleAtom& atom) const {
    return conditions_.First(static_cast<std::size_t>(atom.variable)) +
           static_cast<std::size_t>(atom.mf);
  }
  void AddRow(std::size_t n, std::span<const double> memberships, std::span<const double> outputs);

  std::size_t rows_;
  TMFGroups conditions_;
  TMFGroups actions_;
  std::vector<double> centres_;
  std::vector<std::vector<double>> contrasts_;  // of each condition; empty where no rule names it
  std::vector<std::vector<double>> expected_;   // of each output
};

}  // namespace kiln
