#include "Plot/MapPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "DataObject/Data.h"
#include "Plot/Legible.h"
#include "Plot/SetColumns.h"

namespace kiln {

namespace {

constexpr std::size_t kMostCells = 256;  // along a side

// The units that stand in a plane of the last two dimensions of a map; a chain is one row.
class TPlane {
 public:
  TPlane(const TKohonenNetwork& map, std::size_t first)
      : map_(map), first_(first), rows_(1), columns_(Last(map, 1)) {
    if (map.Grid().NumDimensions() > 1) rows_ = Last(map, 2);
  }

  std::size_t Rows() const { return rows_; }
  std::size_t Columns() const { return columns_; }
  std::span<const double> Prototype(std::size_t row, std::size_t column) const {
    return map_.Prototype(first_ + row * columns_ + column);
  }

  // The value of a cell of the U-matrix, in which units stand at even places.
  double Distance(std::size_t row, std::size_t column) const {
    const std::size_t r = row / 2;
    const std::size_t c = column / 2;
    if (row % 2 == 0 && column % 2 == 0) return MeanDistance(row, column);
    if (row % 2 == 0) return Between(r, c, r, c + 1);
    if (column % 2 == 0) return Between(r, c, r + 1, c);
    return (Between(r, c, r + 1, c + 1) + Between(r, c + 1, r + 1, c)) / 2.0;
  }

 private:
  static std::size_t Last(const TKohonenNetwork& map, std::size_t from_end) {
    const std::span<const int> sizes = map.Grid().Sizes();
    return static_cast<std::size_t>(sizes[sizes.size() - from_end]);
  }

  double Between(std::size_t row, std::size_t column, std::size_t to_row,
                 std::size_t to_column) const {
    const std::span<const double> from = Prototype(row, column);
    const std::span<const double> to = Prototype(to_row, to_column);
    double sum = 0.0;
    for (std::size_t i = 0; i < from.size(); ++i) sum += (from[i] - to[i]) * (from[i] - to[i]);
    return std::sqrt(sum);
  }

  // Of a unit to those above, below and beside it.
  double MeanDistance(std::size_t row, std::size_t column) const {
    double sum = 0.0;
    int count = 0;
    const auto add = [&](bool is_there, std::size_t r, std::size_t c) {
      if (!is_there) return;
      sum += Distance(r, c);
      ++count;
    };
    add(row > 0, row - 1, column);
    add(row + 2 < 2 * rows_, row + 1, column);
    add(column > 0, row, column - 1);
    add(column + 2 < 2 * columns_, row, column + 1);
    return count == 0 ? 0.0 : sum / count;
  }

  const TKohonenNetwork& map_;
  std::size_t first_;
  std::size_t rows_;
  std::size_t columns_;
};

// A grid of values; of more than kMostCells along a side each cell is the mean of several.
template <typename TValue>
TGrid GridOf(std::size_t rows, std::size_t columns, double step, const TValue& value) {
  const std::size_t block = (std::max(rows, columns) - 1) / kMostCells + 1;
  TGrid grid;
  grid.columns = (columns - 1) / block + 1;
  grid.rows = (rows - 1) / block + 1;
  grid.step = step * static_cast<double>(block);
  grid.values.resize(grid.columns * grid.rows);
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < columns; ++column) {
      grid.values[row / block * grid.columns + column / block] += value(row, column);
    }
  }
  for (std::size_t row = 0; row < grid.rows; ++row) {
    const std::size_t high = std::min(block, rows - row * block);
    for (std::size_t column = 0; column < grid.columns; ++column) {
      const std::size_t wide = std::min(block, columns - column * block);
      grid.values[row * grid.columns + column] /= static_cast<double>(high * wide);
    }
  }
  return grid;
}

// The panel of a plane, whose axes count units.
TPanel PanelOf(const TPlane& plane, TGrid grid) {
  TPanel panel;
  const auto axis = [&](const char* name, std::size_t units, std::size_t cells) {
    const double end = grid.step * (static_cast<double>(cells) - 0.5);
    return TAxis{units > 1 ? name : "", -grid.step / 2, end, false, {}, true};
  };
  panel.x = axis("", plane.Columns(), grid.columns);
  panel.y = axis("", plane.Rows(), grid.rows);
  if (grid.columns == 1) panel.x.ticks = {""};  // nothing to count
  if (grid.rows == 1) panel.y.ticks = {""};
  panel.is_downwards = true;
  panel.grid = std::move(grid);
  return panel;
}

// Shades all panels by one scale.
void Scale(std::vector<TPanel>& panels) {
  double lower = std::numeric_limits<double>::infinity();
  double upper = -lower;
  for (const TPanel& panel : panels) {
    for (const double value : panel.grid->values) {
      if (!std::isfinite(value)) continue;
      lower = std::min(lower, value);
      upper = std::max(upper, value);
    }
  }
  if (!(lower <= upper)) lower = upper = 0.0;
  constexpr double kLeast = 1e-9;  // narrower, the numbers of the scale could not be told apart
  const double size = std::max({std::abs(lower), std::abs(upper), 1e-290});
  if (upper - lower < kLeast * size) upper = lower + std::max(size, 1.0) * 1e-6;
  for (TPanel& panel : panels) {
    panel.grid->lower = lower;
    panel.grid->upper = upper;
  }
}

// What units show of their class: its name, where all names have room, else a mark of its own.
class TClassMarks {
 public:
  TClassMarks(const std::vector<std::string>& names, std::size_t columns) : names_(names) {
    constexpr std::size_t kRoom = 48;  // characters in a row of a grid
    std::size_t longest = 0;
    for (const std::string& name : names) longest = std::max(longest, WidthOf(Characters(name)));
    shows_names_ = longest * columns <= kRoom;
  }

  void Add(TPanel& panel, double x, double y, std::size_t number) const {
    if (shows_names_) {
      panel.notes.push_back({x, y, names_[number]});
      return;
    }
    number = std::min(number, kMostClasses);
    while (panel.series.size() <= std::min(names_.size() - 1, kMostClasses)) {
      const std::size_t look = panel.series.size();
      panel.series.push_back(
          {look == kMostClasses ? "others" : names_[look], TStroke::kPoints, look, {}});
    }
    panel.series[number].points.push_back({x, y});
  }

 private:
  const std::vector<std::string>& names_;
  bool shows_names_;
};

// The unit that wins a row, and the class of the row.
struct TWonRow {
  std::size_t unit;
  std::size_t row_class;

  auto Key() const { return std::pair(unit, row_class); }
};

// In order; rows without a class are left out.
std::vector<TWonRow> WonRows(const TKohonenNetwork& map, const Data& set,
                             const TRowClasses& classes) {
  const std::unique_ptr<Data> places = map.RecallCoordinates(&set);
  std::vector<TWonRow> won;
  std::vector<int> coordinates(map.Grid().NumDimensions());
  for (int n = 0; n < places->DataRows(); ++n) {
    const std::size_t row_class = classes.of_rows[static_cast<std::size_t>(n)];
    if (row_class == classes.names.size()) continue;
    std::ranges::transform(places->Row(n).Outputs, coordinates.begin(),
                           [](double value) { return static_cast<int>(value); });
    won.push_back({map.Grid().UnitAt(coordinates), row_class});
  }
  std::ranges::sort(won, {}, &TWonRow::Key);
  return won;
}

// The class of most rows that each unit wins, as marks on the panels of planes of so many units.
void AddClasses(std::vector<TPanel>& panels, const TKohonenNetwork& map, const Data& set,
                std::size_t units) {
  const TRowClasses classes = RowClassesOf(set);
  const std::vector<TWonRow> won = WonRows(map, set, classes);
  const auto columns = static_cast<std::size_t>(map.Grid().Sizes().back());
  const TClassMarks marks(classes.names, columns);
  for (auto next = won.begin(); next != won.end();) {
    const std::size_t unit = next->unit;
    std::size_t most_class = 0;
    std::ptrdiff_t most = 0;
    while (next != won.end() && next->unit == unit) {
      const auto end = std::ranges::upper_bound(next, won.end(), next->Key(), {}, &TWonRow::Key);
      if (end - next > most) {
        most = end - next;
        most_class = next->row_class;
      }
      next = end;
    }
    if (unit / units >= panels.size()) continue;
    const std::size_t row = unit % units / columns;
    marks.Add(panels[unit / units], static_cast<double>(unit % columns), static_cast<double>(row),
              most_class);
  }
}

std::string PlaneName(const TKohonenNetwork& map, std::size_t unit) {
  std::vector<int> coordinates(map.Grid().NumDimensions());
  map.Grid().CoordinatesOf(unit, coordinates);
  std::string name;
  for (std::size_t i = 0; i + 2 < coordinates.size(); ++i) {
    name += std::to_string(coordinates[i]) + ", ";
  }
  return name + "*, *";
}

std::string Averaged(const TGrid& grid, double step) {
  const auto block = static_cast<int>(std::lround(grid.step / step));
  return block == 1
             ? ""
             : ", means of " + std::to_string(block) + " x " + std::to_string(block) + " cells";
}

}  // namespace

TPicture DistancesPicture(std::string_view alias, const TKohonenNetwork& map, const Data* set) {
  constexpr double kStep = 0.5;
  TPicture picture = {"Distances on " + std::string(alias), {}};
  const TPlane plane(map, 0);
  const std::size_t units = plane.Rows() * plane.Columns();
  const std::size_t planes = map.Grid().NumUnits() / units;
  for (std::size_t i = 0; i < std::min(planes, kMaxPanels); ++i) {
    const TPlane part(map, i * units);
    TGrid grid =
        GridOf(2 * part.Rows() - 1, 2 * part.Columns() - 1, kStep,
               [&](std::size_t row, std::size_t column) { return part.Distance(row, column); });
    grid.name = "distance";
    TPanel panel = PanelOf(part, std::move(grid));
    if (planes > 1) panel.title = PlaneName(map, i * units);
    picture.panels.push_back(std::move(panel));
  }
  Scale(picture.panels);
  if (set) AddClasses(picture.panels, map, *set, units);
  picture.title += Averaged(*picture.panels.front().grid, kStep) +
                   FirstOf(picture.panels.size(), planes, " planes");
  return picture;
}

TPicture ComponentsPicture(std::string_view alias, const TKohonenNetwork& map,
                           std::span<const std::size_t> inputs,
                           std::span<const std::string> names) {
  TPicture picture = {"Components of " + std::string(alias), {}};
  const TPlane plane(map, 0);
  for (std::size_t i = 0; i < std::min(inputs.size(), kMaxPanels); ++i) {
    TGrid grid =
        GridOf(plane.Rows(), plane.Columns(), 1.0, [&](std::size_t row, std::size_t column) {
          return plane.Prototype(row, column)[inputs[i]];
        });
    grid.name = "value";
    std::vector<TPanel> panel = {PanelOf(plane, std::move(grid))};
    Scale(panel);  // each by its own
    panel.front().title = names[i];
    picture.panels.push_back(std::move(panel.front()));
  }
  picture.title += Averaged(*picture.panels.front().grid, 1.0) +
                   FirstOf(picture.panels.size(), inputs.size(), " inputs");
  return picture;
}

}  // namespace kiln
