#include "Plot/DataPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "Plot/SetColumns.h"

namespace kiln {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// A series for each class, or one without a name.
class TSeriesOfClasses {
 public:
  TSeriesOfClasses(const Data& set, TStroke stroke) : classes_(RowClassesOf(set)) {
    const std::size_t named = std::min(classes_.names.size(), kMostClasses);
    for (std::size_t i = 0; i < named; ++i) {
      series_.push_back({classes_.names[i], stroke, i, {}});
    }
    const bool has_others =
        classes_.names.size() > named ||
        std::ranges::find(classes_.of_rows, classes_.names.size()) != classes_.of_rows.end();
    if (has_others) series_.push_back({"others", stroke, named, {}});
    if (series_.empty()) series_.push_back({"", stroke, 0, {}});
  }

  std::size_t NumberOf(int row) const {
    if (classes_.names.empty()) return 0;
    return std::min(classes_.of_rows[static_cast<std::size_t>(row)], kMostClasses);
  }
  std::vector<TSeries>& All() { return series_; }

 private:
  TRowClasses classes_;
  std::vector<TSeries> series_;
};

struct TBounds {
  double lower = kInfinity;
  double upper = -kInfinity;
  bool is_whole = true;  // all are whole numbers

  void Take(double value) {
    lower = std::min(lower, value);
    upper = std::max(upper, value);
    is_whole = is_whole && value == std::floor(value);
  }
};

TBounds BoundsOf(const Data& set, const TSetColumns& columns, std::size_t column) {
  TBounds bounds;
  for (int n = 0; n < set.DataRows(); ++n) {
    const double value = columns.Value(set.Row(n), column);
    if (std::isfinite(value)) bounds.Take(value);
  }
  return bounds;
}

// Whether values that are so far apart, the largest of them of this size, can be told apart by the
// numbers along an axis.
bool IsWide(double span, double size) {
  constexpr double kLeastShare = 1e-9;
  constexpr double kLeast = 1e-290;
  return span > std::max(size * kLeastShare, kLeast);
}

// Beyond it drawing overflows.
constexpr double kLargest = 1e300;

// The intervals in which values are counted.
struct TBins {
  TBins(const TBounds& bounds, int values) {
    constexpr double kMostWhole = 40.0;
    constexpr double kExact = 1e15;  // up to which numbers have a place for their halves
    const double size = std::max(std::abs(bounds.lower), std::abs(bounds.upper));
    if (bounds.is_whole && size < kExact && bounds.upper - bounds.lower < kMostWhole) {
      count = static_cast<std::size_t>(bounds.upper - bounds.lower) + 1;
      lower = bounds.lower - 0.5;
      width = 1.0;
      return;
    }
    // Rice's rule.
    const double many = std::clamp(std::ceil(2.0 * std::cbrt(values)), 5.0, kMostWhole);
    count = static_cast<std::size_t>(many);
    lower = std::clamp(bounds.lower, -kLargest, kLargest);
    width = std::clamp(bounds.upper, -kLargest, kLargest) / many - lower / many;
    if (!IsWide(width * many, size)) width = std::max(std::abs(lower), 1.0) * 1e-3;
  }

  std::size_t Of(double value) const {
    const double bin = std::floor(value / width - lower / width);
    return static_cast<std::size_t>(std::clamp(bin, 0.0, static_cast<double>(count - 1)));
  }
  double Edge(std::size_t bin) const { return lower + static_cast<double>(bin) * width; }

  std::size_t count;
  double lower;
  double width;
};

// The outline of counts.
std::vector<TPoint> Stairs(const TBins& bins, const std::vector<int>& counts) {
  std::vector<TPoint> stairs = {{bins.Edge(0), 0.0}};
  for (std::size_t bin = 0; bin < bins.count; ++bin) {
    stairs.push_back({bins.Edge(bin), static_cast<double>(counts[bin])});
    stairs.push_back({bins.Edge(bin + 1), static_cast<double>(counts[bin])});
  }
  stairs.push_back({bins.Edge(bins.count), 0.0});
  return stairs;
}

}  // namespace

TThinning::TThinning(int rows) : rows_(rows) {
  constexpr int kMostRows = 4000;
  stride_ = (rows - 1) / kMostRows + 1;
}

bool TThinning::Draws(int n) const {
  constexpr std::uint32_t kScatter = 2654435761;  // 2^32 over the golden ratio
  const auto group = static_cast<std::uint32_t>(n / stride_);
  const auto stride = static_cast<std::uint32_t>(stride_);
  return static_cast<std::uint32_t>(n % stride_) == (group * kScatter >> 16U) % stride;
}

std::string TThinning::Remark() const {
  if (stride_ == 1) return {};
  return ", one in " + std::to_string(stride_) + " of " + std::to_string(rows_) + " rows";
}

TAxis ValueAxis(std::string name, double lower, double upper) {
  constexpr double kRoom = 0.04;
  double margin = (upper / 2.0 - lower / 2.0) * 2.0 * kRoom;  // does not overflow
  const double size = std::max(std::abs(lower), std::abs(upper));
  if (!IsWide(margin, size)) margin = std::max(size * kRoom, 1e-9);
  return {std::move(name),
          std::clamp(lower - margin, -kLargest, kLargest),
          std::clamp(upper + margin, -kLargest, kLargest),
          false,
          {}};
}

int NumFinite(const Data& set, std::size_t x, std::size_t y) {
  const TSetColumns columns(set);
  int count = 0;
  for (int n = 0; n < set.DataRows(); ++n) {
    const DataRow row = set.Row(n);
    if (std::isfinite(columns.Value(row, x)) && std::isfinite(columns.Value(row, y))) ++count;
  }
  return count;
}

TPicture ScatterPicture(std::string_view alias, const Data& set, std::size_t x, std::size_t y) {
  const TSetColumns columns(set);
  const TThinning thinning(NumFinite(set, x, y));
  TSeriesOfClasses series(set, TStroke::kPoints);
  TBounds across, up;
  int finite = 0;
  for (int n = 0; n < set.DataRows(); ++n) {
    const DataRow row = set.Row(n);
    const TPoint point = {columns.Value(row, x), columns.Value(row, y)};
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !thinning.Draws(finite++)) continue;
    series.All()[series.NumberOf(n)].points.push_back(point);
    across.Take(point.x);
    up.Take(point.y);
  }
  TPanel panel;
  panel.x = ValueAxis(columns.Name(x), across.lower, across.upper);
  panel.y = ValueAxis(columns.Name(y), up.lower, up.upper);
  panel.series = std::move(series.All());
  std::erase_if(panel.series, [](const TSeries& one) { return one.points.empty(); });
  return {std::string(alias) + thinning.Remark(), {std::move(panel)}};
}

TPicture DistributionPicture(std::string_view alias, const Data& set, std::size_t column) {
  const TSetColumns columns(set);
  const TBins bins(BoundsOf(set, columns, column), set.DataRows());
  TSeriesOfClasses series(set, TStroke::kArea);
  std::vector<std::vector<int>> counts(series.All().size(), std::vector<int>(bins.count));
  // Classes share a scale. Those beyond the last that is named are counted together and may be many
  // times as many, so that they have their own.
  int most_of_class = 0;
  int most_of_rest = 0;
  for (int n = 0; n < set.DataRows(); ++n) {
    const double value = columns.Value(set.Row(n), column);
    if (!std::isfinite(value)) continue;
    const std::size_t number = series.NumberOf(n);
    int& most = number < kMostClasses ? most_of_class : most_of_rest;
    most = std::max(most, ++counts[number][bins.Of(value)]);
  }
  // Few are easily compared one below the other; more would be a tower.
  constexpr std::size_t kMostStacked = 6;
  const bool is_stacked = counts.size() <= kMostStacked;
  TPicture picture = {std::string(alias), {}, is_stacked};
  if (!is_stacked) picture.title.append(": ").append(columns.Name(column));
  for (std::size_t i = 0; i < counts.size(); ++i) {
    TPanel panel;
    panel.title = std::move(series.All()[i].name);
    panel.x = {"", bins.Edge(0), bins.Edge(bins.count), false, {}};
    const int most = i < kMostClasses ? most_of_class : most_of_rest;
    panel.y = {"rows", 0.0, std::max(most, 1) * 1.05, false, {}, true};
    const std::size_t look = is_stacked ? series.All()[i].look : 0;
    panel.series.push_back({"", TStroke::kArea, look, Stairs(bins, counts[i])});
    picture.panels.push_back(std::move(panel));
  }
  if (is_stacked) picture.panels.back().x.name = columns.Name(column);
  return picture;
}

}  // namespace kiln
