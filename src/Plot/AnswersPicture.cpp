#include "Plot/AnswersPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>

#include "NeuralNets/TRecall.h"
#include "Plot/DataPicture.h"
#include "Plot/SetColumns.h"
#include "Shared/Interruption.h"
#include "Shared/NumberFormat.h"

namespace kiln {

namespace {

std::string Subject(std::string_view network, std::string_view set) {
  return std::string(network) + " on " + std::string(set);
}

// Both axes of a panel with the same bounds, those of all its points.
void FitAxes(TPanel& panel) {
  double lower = std::numeric_limits<double>::infinity();
  double upper = -lower;
  for (const TPoint& point : panel.series.front().points) {
    lower = std::min({lower, point.x, point.y});
    upper = std::max({upper, point.x, point.y});
  }
  if (lower > upper) lower = upper = 0.0;
  panel.x = ValueAxis("expected", lower, upper);
  panel.y = ValueAxis("answered", lower, upper);
}

}  // namespace

TPicture ConfusionPicture(std::string_view network_alias, std::string_view set_alias,
                          const Data& set, const TConfusion& classes) {
  const std::size_t count = classes.Classes();
  TPanel panel;
  TGrid grid = {count, count, 1.0, {}, TShading::kUpwards, 0.0, 1.0, ""};
  constexpr std::size_t kFewClasses = 8;
  int rows = 0;
  int right = 0;
  for (std::size_t expected = 0; expected < count; ++expected) {
    int all = 0;
    for (std::size_t answered = 0; answered < count; ++answered) {
      all += classes.Count(expected, answered);
    }
    rows += all;
    right += classes.Count(expected, expected);
    for (std::size_t answered = 0; answered < count; ++answered) {
      const int number = classes.Count(expected, answered);
      grid.values.push_back(all == 0 ? 0.0 : static_cast<double>(number) / all);
      if (number == 0 && count > kFewClasses) continue;  // a field of zeros says nothing
      panel.notes.push_back(
          {static_cast<double>(answered), static_cast<double>(expected), std::to_string(number)});
    }
  }
  panel.grid = std::move(grid);
  const double end = static_cast<double>(count) - 0.5;
  panel.x = {"answered", -0.5, end, false, ClassNames(set)};
  panel.y = {"expected", -0.5, end, false, ClassNames(set)};
  panel.is_downwards = true;
  return {Subject(network_alias, set_alias) + ": " + std::to_string(right) + " of " +
              std::to_string(rows) + " right",
          {std::move(panel)}};
}

TPicture AnswersPicture(std::string_view network_alias, std::string_view set_alias,
                        const TBasicNetwork& network, const Data& set) {
  const TSetColumns columns(set);
  const auto inputs = static_cast<std::size_t>(set.Inputs());
  const std::size_t outputs = network.NumOutputs();
  TPicture picture;
  for (std::size_t i = 0; i < std::min(outputs, kMaxPanels); ++i) {
    TPanel panel;
    if (outputs > 1) panel.title = columns.Name(inputs + i);
    panel.is_square = true;
    panel.has_diagonal = true;
    panel.series.push_back({"", TStroke::kPoints, 0, {}});
    picture.panels.push_back(std::move(panel));
  }
  const TThinning thinning(set.DataRows());
  const std::unique_ptr<TBasicNetwork> copy = network.Clone();
  const auto visit = [&](int n, const DataRow& row, std::span<const double> answer) {
    Interruption::Check();
    if (!thinning.Draws(n)) return;
    for (std::size_t i = 0; i < picture.panels.size(); ++i) {
      const TPoint point = {row.Outputs[i], answer[i]};
      if (!std::isfinite(point.x) || !std::isfinite(point.y)) continue;
      picture.panels[i].series.front().points.push_back(point);
    }
  };
  TRecall(*copy).ForEachRow(set, 0, set.DataRows(), visit);
  for (TPanel& panel : picture.panels) FitAxes(panel);
  picture.title = Subject(network_alias, set_alias) + ": error " +
                  FormatGeneral(MeasureScore(network, set).error, 3) + thinning.Remark() +
                  FirstOf(picture.panels.size(), outputs, " outputs");
  return picture;
}

}  // namespace kiln
