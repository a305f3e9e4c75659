#include "Tarn/RuleExtraction/TRuleTask.h"

#include <cmath>
#include <numeric>

#include "NeuralNets/Kernels/Kernels.h"

namespace kiln {

namespace {

// Weight layer whose weights are the centres of outputs.
constexpr int kOutputCentres = 4;

}  // namespace

TRuleTask::TRuleTask(const TTarn& terms, const Data& data, const TFlatRules& rules)
    : rows_(static_cast<std::size_t>(data.DataRows())),
      conditions_(terms.InputMF()),
      actions_(terms.OutputMF()),
      centres_(terms.GetWeightLayer(kOutputCentres)),
      contrasts_(conditions_.NumMF()),
      expected_(actions_.NumVariables(), std::vector<double>(PaddedSize(rows_))) {
  for (const TFlatRule& rule : rules) {
    for (const TRuleAtom& atom : rule.conditions) {
      contrasts_[ConditionOf(atom)].resize(PaddedSize(rows_));
    }
  }
  TTarn network = terms;
  std::vector<double> answer(network.NumOutputs());
  for (std::size_t n = 0; n < rows_; ++n) {
    const DataRow row = data.Row(static_cast<int>(n));
    network.RecallPattern(row.Inputs, answer);
    AddRow(n, network.Layer(TTarn::kConditionLayer).Outputs(), row.Outputs);
  }
}

void TRuleTask::AddRow(std::size_t n, std::span<const double> memberships,
                       std::span<const double> outputs) {
  for (std::size_t v = 0; v < conditions_.NumVariables(); ++v) {
    const std::size_t first = conditions_.First(v);
    const auto own = memberships.subspan(first, conditions_.Count(v));
    const double sum = std::accumulate(own.begin(), own.end(), 0.0);
    for (std::size_t k = 0; k < own.size(); ++k) {
      std::vector<double>& contrast = contrasts_[first + k];
      if (!contrast.empty()) contrast[n] = own[k] - (sum - own[k]);
    }
  }
  for (std::size_t t = 0; t < outputs.size(); ++t) expected_[t][n] = outputs[t];
}

double TRuleTask::ErrorOfMeans() const {
  double squares = 0.0;
  const auto rows = static_cast<double>(rows_);
  for (const std::vector<double>& column : expected_) {
    const auto values = std::span(column).first(rows_);
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / rows;
    for (const double value : values) squares += (value - mean) * (value - mean);
  }
  return std::sqrt(squares / rows / static_cast<double>(expected_.size()));
}

}  // namespace kiln
