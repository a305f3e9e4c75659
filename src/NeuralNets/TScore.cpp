#include "NeuralNets/TScore.h"

#include <algorithm>
#include <memory>
#include <span>

#include "DataObject/Data.h"
#include "NeuralNets/TBasicNetwork.h"
#include "NeuralNets/TErrorObj.h"
#include "NeuralNets/TTeamRecall.h"
#include "Shared/Interruption.h"

namespace kiln {

namespace {

bool IsClass(std::span<const double> outputs) {
  const auto zeros = std::ranges::count(outputs, 0.0);
  const auto ones = std::ranges::count(outputs, 1.0);
  return zeros + ones == std::ssize(outputs) && (outputs.size() == 1 || ones == 1);
}

// What a network answers to a row.
struct TAnswerToRow {
  double error = 0.0;
  std::size_t answered_class = 0;
};

std::vector<TAnswerToRow> AnswersOf(const TBasicNetwork& network, const Data& set,
                                    const TErrorObj& error) {
  std::vector<TAnswerToRow> answers(static_cast<std::size_t>(set.DataRows()));
  const std::unique_ptr<TBasicNetwork> copy = network.Clone();
  TTeamRecall(*copy).ForEachRow(set,
                                [&](int n, const DataRow& row, std::span<const double> output) {
                                  Interruption::Check();
                                  answers[static_cast<std::size_t>(n)] = {
                                      error.OfPattern(row.Outputs, output), AnsweredClass(output)};
                                });
  return answers;
}

}  // namespace

bool HasClasses(const Data& set) {
  if (set.Outputs() == 0) return false;
  for (int n = 0; n < set.DataRows(); ++n) {
    if (!IsClass(set.Row(n).Outputs)) return false;
  }
  return true;
}

std::size_t AnsweredClass(std::span<const double> outputs) {
  if (outputs.size() == 1) return outputs.front() >= 0.5 ? 1 : 0;
  return static_cast<std::size_t>(std::ranges::max_element(outputs) - outputs.begin());
}

TScore MeasureScore(const TBasicNetwork& network, const Data& set) {
  network.CheckFits(set, "MeasureScore");
  TErrorRMSObj error(network.NumOutputs());
  int right = 0;
  int n = 0;
  for (const TAnswerToRow& answer : AnswersOf(network, set, error)) {
    error.AddPattern(answer.error);
    if (AnsweredClass(set.Row(n++).Outputs) == answer.answered_class) ++right;
  }
  if (!HasClasses(set)) return {error.Value(), std::nullopt};
  return {error.Value(), right};
}

std::optional<TConfusion> MeasureConfusion(const TBasicNetwork& network, const Data& set) {
  network.CheckFits(set, "MeasureConfusion");
  if (!HasClasses(set)) return std::nullopt;
  TConfusion confusion(std::max<std::size_t>(network.NumOutputs(), 2));
  int n = 0;
  for (const TAnswerToRow& answer : AnswersOf(network, set, TErrorRMSObj(network.NumOutputs()))) {
    confusion.Add(AnsweredClass(set.Row(n++).Outputs), answer.answered_class);
  }
  return confusion;
}

}  // namespace kiln
