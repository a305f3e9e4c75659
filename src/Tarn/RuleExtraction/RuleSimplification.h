#pragma once

#include "DataObject/Data.h"
#include "NeuralNets/Training/TEpochObserver.h"
#include "Tarn/RuleExtraction/TFlatRule.h"
#include "Tarn/TTarn.h"

namespace kiln {

// How rules are made simpler by what they answer to a data set.
struct TSimplification {
  const Data& data;
  double tolerance = 0.1;        // what an atom fewer may cost, see Simplified
  bool fit = true;               // whether the degrees that are left are fitted
  bool refit = false;            // whether they are fitted first, too, and a little after each part
  int rounds = 1;                // how often parts go and degrees are fitted, while any part goes
  int atoms = 0;                 // how many conditions a rule may have; 0: any number
  TEpochObserver observer = {};  // called after each part taken out and each step of a fit; false
                                 // ends the work with what it has reached
};

// The rules with what the data set has no need of taken out. Errors below are the root mean square
// ones on the set of the Tarn that RITarn makes of the rules alone.
//
// Again and again the atom, or the rule, goes whose going leaves the least error, the first of
// equals (see TRuleModel::Parts), as long as that is within
//   lowest + tolerance (E - lowest),
// where `lowest` is the least error seen and E that of answering every row with the means of the
// outputs. Then the degrees that are left are fitted (see FitDegrees).
//
// If rules have more conditions than `atoms` allows after all rounds, conditions of these go in the
// same order, whatever that costs, and the rounds begin once more.
//
// Throws TException unless the set fits the network, has rows and only finite values, the tolerance
// is a number of at least 0, there is a round, and `atoms` is not negative. REQUIRES: there are the
// terms that the rules name.
TFlatRules Simplified(TFlatRules rules, const TTarn& terms, const TSimplification& options);

}  // namespace kiln
