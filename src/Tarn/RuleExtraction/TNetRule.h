#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "KQmessage/TKQstructure.h"
#include "Membership/TMFSetList.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "RuleObject/TNetLabel.h"
#include "Tarn/RuleExtraction/RuleSimplification.h"
#include "Tarn/TTarn.h"

// From Tarn networks to fuzzy rules and back. A rule node reads as a rule: the weights that lead to
// it from conditions are its antecedent, those that lead from it to actions its consequences, and a
// weight is the degree of an atom.
namespace kiln::TNetRule {

// --- Extraction: TNetRuleExtraction.cpp ------------------------------------------------------

// The rules of a Tarn, at most one a rule node, of the type "RENet". The antecedent has an atom for
// each input of which some condition weighs more than both the input threshold and 0: the heaviest,
// of equal ones the first. Which actions become consequences is up to the method. A node for which
// there is no antecedent or no consequence gives no rule, and pruned connections count for nothing.
//
// Options, numbers and a word:
//   threshold      both thresholds; 0 without it
//   thresholdin    the input threshold, whatever `threshold` says
//   thresholdout   the output threshold likewise
//   method         RETarn        every action that weighs more than the output threshold
//                  NodeLocation  of these the heaviest of each output, of equal ones the first
//                  Vireo2        every action that weighs more than 0
//                  in any case; RETarn without it
//
// The memberships of a variable add up to 1, so that a number can be added to the weights of one
// variable into a node and taken from those of another without changing any answer of the network.
// RETarn reads weights as they stand; to the other two methods, which such shifts leave alone, a
// weight is what is left of it without the mean of the variable's weights at the node.
//
// Without labels the network's default labels name the terms; with a simplification the rules are
// those that it leaves. Throws TException "RETarn only works on Tarn" for another network and what
// GetNetMF and Simplified do, and TAssertion, after printing its name, for a method that there is
// not.
TFuzzyRuleSet RETarn(const TBasicNetwork& network, const TKQstructure& options,
                     const TNetLabel* labels, const TSimplification* simplification = nullptr);

// What keeps RETarn from finding any rule: the threshold, as a keyword of the options, that would
// have to be below `bound` for the first one. Nothing when there are rules, or none at any
// threshold. Throws as RETarn does.
struct TObstacle {
  std::string_view threshold;
  double bound;
};
std::optional<TObstacle> ObstacleToRules(const TBasicNetwork& network, const TKQstructure& options);

// --- Membership functions: TNetRuleMF.cpp ----------------------------------------------------

struct TNetMF {
  TMFSetList inputs;
  TMFSetList outputs;
};

// The terms of a Tarn as membership functions under the names of the labels. A function is 1 at its
// centre and 0 from the neighbouring centres on; the first and the last stay at 1 beyond theirs.
// The range of a variable is [0, 1], wider where a centre is outside. Throws TException "Labels
// unsuitable for this network" unless every variable has as many terms in the labels.
TNetMF GetNetMF(const TTarn& network, const TNetLabel& labels);

// Gives the terms of a Tarn the centres of membership functions, in whatever order they stand; feet
// and ranges do not count. Throws TException, and leaves the network as it is, unless both lists
// have the network's numbers of variables and terms, the kinds of functions are those that GetNetMF
// makes, and the centres of outputs are within [0, 1].
void SetNetMF(TTarn& network, const TMFSetList& inputs, const TMFSetList& outputs);

// --- Insertion: TNetRuleInsertion.cpp --------------------------------------------------------

// Makes the rules those of a Tarn, with the weights that RETarn would read them from; what the
// rules say nothing of weighs 0. Every clause of an antecedent, see TRuleNodes, takes a rule node.
// Membership functions stay.
//
// Throws TException, and leaves the network as it is, for rules that a Tarn cannot hold, variables
// that are not those of the network, more clauses than rule nodes, and a pruned connection that a
// rule needs.
void InsertRENet(TTarn& network, const TFuzzyRuleSet& rule_set);

// A new Tarn with the membership functions and rules of a set, and a rule node for each clause.
// Throws TException for sets and rules that a Tarn cannot hold.
std::unique_ptr<TTarn> RITarn(const TFuzzyRuleSet& rule_set);

}  // namespace kiln::TNetRule
