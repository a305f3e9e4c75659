#include <optional>

#include "DataTools/DataManip/TDataManip.h"
#include "DataTools/DataManip/TDataStats.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/Manipulation.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

// The tags of the bounds of one side: a list with a value for each column, or one value for all.
struct TBoundTags {
  std::string_view column_maxima;
  std::string_view column_minima;
  std::string_view maximum;
  std::string_view minimum;
  TDataStats::TFigures maxima;  // in statistics
  TDataStats::TFigures minima;
};

constexpr TBoundTags kInputTags = {"inputcmaxs",
                                   "inputcmins",
                                   "inputgmax",
                                   "inputgmin",
                                   &TDataStats::GetInputMaxima,
                                   &TDataStats::GetInputMinima};
constexpr TBoundTags kOutputTags = {"outputcmaxs",
                                    "outputcmins",
                                    "outputgmax",
                                    "outputgmin",
                                    &TDataStats::GetOutputMaxima,
                                    &TDataStats::GetOutputMinima};

constexpr char kNothing[] = "nothing to do";

// A list of bounds, one a column, which may be left out.
TReading<std::vector<double>> ColumnValues(const TCommandLine& line, std::string_view tag,
                                           int columns) {
  if (line.Word(tag).code != TReadCode::kRead) return {TReadCode::kTagAbsent, {}};
  TReading<std::vector<double>> values = line.Doubles(tag);
  if (values.code != TReadCode::kRead || std::ssize(values.value) != columns) {
    Fail(kNoArray);
  }
  return values;
}

// Whether both bounds of a pair are given. Fails when only one is.
template <typename T>
bool ArePair(const TReading<T>& maximum, const TReading<T>& minimum) {
  if (maximum.code != minimum.code) Fail(kNothing);
  return maximum.code == TReadCode::kRead;
}

// The bounds of a side that has `columns` columns, or nothing when the line gives none. Lists win
// over single values.
std::optional<TColumnBounds> SideBounds(const TCommandLine& line, const TBoundTags& tags,
                                        int columns) {
  const auto maxima = ColumnValues(line, tags.column_maxima, columns);
  const auto minima = ColumnValues(line, tags.column_minima, columns);
  const auto maximum = line.Double(tags.maximum);
  const auto minimum = line.Double(tags.minimum);
  const bool by_column = ArePair(maxima, minima);
  const bool for_all = ArePair(maximum, minimum);
  if (by_column) return TColumnBounds(maxima.value, minima.value);
  if (for_all) return TColumnBounds(columns, maximum.value, minimum.value);
  return std::nullopt;
}

// The statistics that the line names, of as many columns as the set has on each side where it has
// any; null where the line names none.
std::shared_ptr<TDataStats> NamedStats(const TInterpreter& interpreter, const TCommandLine& line,
                                       std::string_view set_alias, const Data& set) {
  if (line.Word("stats").code != TReadCode::kRead) return nullptr;
  const std::string_view alias = RequiredAlias(line, "stats");
  auto stats = RequiredObject<TDataStats>(interpreter, alias, " is not of type DataStats");
  const auto check = [&](int columns, const char* side, TDataStats::TFigures figures) {
    if (columns == 0) return;
    RequireColumns(set_alias, columns, side, alias, (*stats.*figures)().size());
  };
  check(set.Inputs(), "inputs", &TDataStats::GetInputMaxima);
  check(set.Outputs(), "outputs", &TDataStats::GetOutputMaxima);
  return stats;
}

// Likewise, or from the statistics that the line names. A side without columns needs none.
std::optional<TColumnBounds> SideBounds(const TCommandLine& line, const TBoundTags& tags,
                                        int columns, TDataStats* stats) {
  auto bounds = SideBounds(line, tags, columns);
  if (bounds || !stats || columns == 0) return bounds;
  return TColumnBounds((stats->*tags.maxima)(), (stats->*tags.minima)());
}

// TDataManip's Normalise or Denormalise.
using TMapping = std::unique_ptr<Data> (*)(const Data* source, const TColumnBounds& inputs,
                                           const TColumnBounds& outputs);

TAnswer Rescale(TInterpreter& interpreter, const TCommandLine& line, TMapping mapping) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  const std::string_view method = Required(line.Word("method"), "tag method not found");
  if (!EqualNoCase(method, "linear")) Fail("unknown normalisation method");
  const auto set = RequiredObject<Data>(node, source, " is not of type Data");
  const auto stats = NamedStats(interpreter, line, source, *set);
  const auto inputs = SideBounds(line, kInputTags, set->Inputs(), stats.get());
  const auto outputs = SideBounds(line, kOutputTags, set->Outputs(), stats.get());
  if (!inputs && !outputs) Fail(kNothing);
  interpreter.Insert({destination, mapping(set.get(), inputs.value_or(TColumnBounds()),
                                           outputs.value_or(TColumnBounds()))});
  set->ResetCursor();
  return kDone;
}

}  // namespace

TAnswer Normalise(TInterpreter& interpreter, const TCommandLine& line) {
  return Rescale(interpreter, line, TDataManip::Normalise);
}

TAnswer Denormalise(TInterpreter& interpreter, const TCommandLine& line) {
  return Rescale(interpreter, line, TDataManip::Denormalise);
}

}  // namespace kiln::commands
