#include "Shared/TException.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/RuleExtraction/TRuleNodes.h"

namespace kiln::TNetRule {

void InsertRENet(TTarn& network, const TFuzzyRuleSet& rule_set) {
  if (rule_set.Inputs().MFCounts() != network.InputMF() ||
      rule_set.Outputs().MFCounts() != network.OutputMF()) {
    throw TException("Number of Fuzzy MF not appropriate for this network", "Bad Parameter",
                     "TNetRule::InsertRENet");
  }
  TRuleNodes(rule_set).WriteTo(network);
}

std::unique_ptr<TTarn> RITarn(const TFuzzyRuleSet& rule_set) {
  const TRuleNodes nodes(rule_set);
  auto network = std::make_unique<TTarn>(rule_set.Inputs().MFCounts(), nodes.Count(),
                                         rule_set.Outputs().MFCounts());
  SetNetMF(*network, rule_set.Inputs(), rule_set.Outputs());
  nodes.WriteTo(*network);
  return network;
}

}  // namespace kiln::TNetRule
