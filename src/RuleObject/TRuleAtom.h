#pragma once

namespace kiln {

// A condition or a consequence: a variable is, or is not, one of its fuzzy terms.
struct TRuleAtom {
  static constexpr int kNoMF = -1;

  int variable = 0;     // position of the variable's set in the list of inputs or of outputs
  int mf = kNoMF;       // position of the term in that set; kNoMF when the atom names none
  double degree = 1.0;  // weight of the atom
  bool negated = false;

  friend bool operator==(const TRuleAtom&, const TRuleAtom&) = default;
};

}  // namespace kiln
