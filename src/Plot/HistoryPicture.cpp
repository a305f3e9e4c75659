#include "Plot/HistoryPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace kiln {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TSeries Curve(const std::vector<TTrainPoint>& points, double TTrainPoint::*error, const char* name,
              std::size_t look) {
  TSeries curve = {name, TStroke::kLine, look, {}};
  for (const TTrainPoint& point : points) {
    if (std::isfinite(point.*error)) {
      curve.points.push_back({static_cast<double>(point.epoch), point.*error});
    }
  }
  return curve;
}

// Logarithms have no place for 0; such points go down to the lower end of the axis.
void Lift(TSeries& curve, double lower) {
  for (TPoint& point : curve.points) point.y = std::max(point.y, lower);
}

}  // namespace

TAxis ErrorAxis(double lower, double upper) {
  TAxis axis = {"error", lower, upper, false, {}};
  constexpr double kSpan = 10.0;
  constexpr double kMost = 1e12;      // what is below is as good as 0
  constexpr double kLargest = 1e300;  // beyond it drawing overflows
  const double floor = std::max(lower, upper / kMost);
  if (upper > 0.0 && upper / floor >= kSpan) {
    axis.is_logarithmic = true;
    constexpr double kMargin = 1.25;
    axis.lower = floor / kMargin;
    axis.upper = std::min(upper * kMargin, kLargest);
    return axis;
  }
  constexpr double kLeast = 1e-9;  // a narrower span is rounding: the curve is level
  const bool is_level = upper - lower <= kLeast * upper;
  const double margin = is_level ? std::max(upper, kLeast) / 2.0 : (upper - lower) / 20.0;
  axis.lower = std::max(lower - margin, 0.0);
  axis.upper = upper + margin;
  return axis;
}

std::size_t NumDrawn(const TTrainHistory& history) {
  const std::vector<TTrainPoint> points = history.Points();
  return Curve(points, &TTrainPoint::training, "", 0).points.size();
}

TPicture HistoryPicture(std::string_view alias, const TTrainHistory& history, bool breeds) {
  const std::vector<TTrainPoint> points = history.Points();
  TPanel panel;
  panel.series.push_back(Curve(points, &TTrainPoint::training, breeds ? "best" : "training", 0));
  TSeries average = Curve(points, &TTrainPoint::average, "average", 2);
  if (!average.points.empty()) panel.series.push_back(std::move(average));
  TSeries validation = Curve(points, &TTrainPoint::validation, "validation", 1);
  if (!validation.points.empty()) {
    const auto least = std::ranges::min_element(validation.points, {}, &TPoint::y);
    panel.heads.push_back({least->x,
                           (breeds ? "kept: generation " : "kept: epoch ") +
                               std::to_string(static_cast<int>(least->x)),
                           true});
    panel.series.push_back(std::move(validation));
  }
  if (panel.series.size() == 1) panel.series.front().name.clear();  // nothing to tell it from
  double lower = kInfinity;
  double upper = 0.0;
  for (const TSeries& curve : panel.series) {
    for (const TPoint& point : curve.points) {
      if (point.y > 0.0) lower = std::min(lower, point.y);
      upper = std::max(upper, point.y);
    }
  }
  panel.y = ErrorAxis(std::min(lower, upper), upper);
  if (panel.y.is_logarithmic) {
    for (TSeries& curve : panel.series) Lift(curve, panel.y.lower);
  }
  panel.x = {breeds ? "generation" : "epoch",
             static_cast<double>(points.front().epoch),
             static_cast<double>(points.back().epoch),
             false,
             {},
             true};
  return {"Errors of " + std::string(alias), {std::move(panel)}};
}

}  // namespace kiln
