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

}  // namespace

int TConfusion::Right() const {
  int right = 0;
  for (std::size_t c = 0; c < classes_; ++c) right += Count(c, c);
  return right;
}

TScore MeasureScore(const TBasicNetwork& network, const Data& set) {
  network.CheckFits(set, "MeasureScore");
  const std::unique_ptr<TBasicNetwork> copy = network.Clone();
  TErrorRMSObj error(network.NumOutputs());
  TScore score = {0.0, std::nullopt};
  if (HasClasses(set)) score.classes.emplace(std::max<std::size_t>(network.NumOutputs(), 2));
  TRecall(*copy).ForEachRow(set, [&](const DataRow& row, std::span<const double> output) {
    error.Accumulate(row.Outputs, output);
    if (score.classes) score.classes->Add(AnsweredClass(row.Outputs), AnsweredClass(output));
  });
  score.error = error.Value();
  return score;
}

}  // namespace kiln
