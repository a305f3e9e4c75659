#include <optional>

#include "DataTools/DataManip/TDataManip.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

// The tags of the bounds of one side: a list with a value for each column, or one value for all.
struct TBoundTags {
  std::string_view column_maxima;
  std::string_view column_minima;
  std::string_view maximum;
  std::string_view minimum;
};

constexpr TBoundTags kInputTags = {"inputcmaxs", "inputcmins", "inputgmax", "inputgmin"};
constexpr TBoundTags kOutputTags = {"outputcmaxs", "outputcmins", "outputgmax", "outputgmin"};

constexpr char kNothing[] = "nothing to do";

// A list of bounds, which may be left out.
TReading<std::vector<double>> ColumnValues(const TCommandLine& line, std::string_view tag,
                                           int columns) {
  if (line.Word(tag).code != TReadCode::kRead) return {TReadCode::kTagAbsent, {}};
  TReading<std::vector<double>> values = line.Doubles(tag);
  if (values.code != TReadCode::kRead || std::ssize(values.value) != columns) {
    Fail("error parsing array");
  }
  return values;
}

// Whether two bounds that only make sense together are given.
template <typename T>
bool ArePair(const TReading<T>& maximum, const TReading<T>& minimum) {
  if (maximum.code != minimum.code) Fail(kNothing);
  return maximum.code == TReadCode::kRead;
}

// The bounds of a side of so many columns. Those of single columns win over those of all.
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

// One of the two directions between values and the range from 0 to 1.
using TMapping = std::unique_ptr<Data> (*)(const Data* source, const TColumnBounds& inputs,
                                           const TColumnBounds& outputs);

TAnswer Rescale(TInterpreter& interpreter, const TCommandLine& line, TMapping mapping) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  const std::string_view method = Required(line.Word("method"), "tag method not found");
  if (!EqualNoCase(method, "linear")) Fail("unknown normalisation method");
  const auto set = RequiredObject<Data>(node, source, " is not of type Data");
  const auto inputs = SideBounds(line, kInputTags, set->Inputs());
  const auto outputs = SideBounds(line, kOutputTags, set->Outputs());
  if (!inputs && !outputs) Fail(kNothing);
  interpreter.Insert({destination, mapping(set.get(), inputs.value_or(TColumnBounds()),
                                           outputs.value_or(TColumnBounds()))});
  set->ResetCursor();
  return kDone;
}

}  // namespace

TAnswer Shuffle(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  const auto set = RequiredObject<Data>(node, source, " is not of type Data");
  StartRandom(line);
  interpreter.Insert({destination, TDataManip::Shuffle(set.get())});
  set->ResetCursor();
  return kDone;
}

TAnswer Normalise(TInterpreter& interpreter, const TCommandLine& line) {
  return Rescale(interpreter, line, TDataManip::Normalise);
}

TAnswer Denormalise(TInterpreter& interpreter, const TCommandLine& line) {
  return Rescale(interpreter, line, TDataManip::Denormalise);
}

}  // namespace kiln::commands
