#include "NeuralNets/TScore.h"

#include <algorithm>
#include <memory>
#include <span>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TRecall.h"

namespace kiln {

namespace {

std::size_t AnsweredClass(std::span<const double> outputs) {
  if (outputs.size() == 1) return outputs.front() >= 0.5 ? 1 : 0;
  return static_cast<std::size_t>(std::ranges::max_element(outputs) - outputs.begin());
}

bool IsClass(std::span<const double> outputs) {
  const auto zeros = std::ranges::count(outputs, 0.0);
  const auto ones = std::ranges::count(outputs, 1.0);
  return zeros + ones == std::ssize(outputs) && (outputs.size() == 1 || ones == 1);
}

bool HasClasses(const Data& set) {
  if (set.Outputs() == 0) return false;
  for (int n = 0; n < set.DataRows(); ++n) {
    if (!IsClass(set.Row(n).Outputs)) return false;
  }
  return true;
}

// Calls compare(row, output) for each row with what the network answers, in a copy of it.
template <typename TCompare>
void ForEachAnswer(const TBasicNetwork& network, const Data& set, TCompare compare) {
  const std::unique_ptr<TBasicNetwork> copy = network.Clone();
  TRecall(*copy).ForEachRow(set, compare);
}

}  // namespace

TScore MeasureScore(const TBasicNetwork& network, const Data& set) {
  network.CheckFits(set, "MeasureScore");
  TErrorRMSObj error(network.NumOutputs());
  int right = 0;
  ForEachAnswer(network, set, [&](const DataRow& row, std::span<const double> output) {
    error.Accumulate(row.Outputs, output);
    if (AnsweredClass(row.Outputs) == AnsweredClass(output)) ++right;
  });
  if (!HasClasses(set)) return {error.Value(), std::nullopt};
  return {error.Value(), right};
}

std::optional<TConfusion> MeasureConfusion(const TBasicNetwork& network, const Data& set) {
  network.CheckFits(set, "MeasureConfusion");
  if (!HasClasses(set)) return std::nullopt;
  TConfusion confusion(std::max<std::size_t>(network.NumOutputs(), 2));
  ForEachAnswer(network, set, [&](const DataRow& row, std::span<const double> output) {
    confusion.Add(AnsweredClass(row.Outputs), AnsweredClass(output));
  });
  return confusion;
}

}  // namespace kiln
