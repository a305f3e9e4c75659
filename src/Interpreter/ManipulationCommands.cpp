#include <optional>

#include "DataTools/DataManip/TDataManip.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

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
constexpr char kNoBounds[] = "none";

// A list of bounds, one a column, which may be left out.
TReading<std::vector<double>> ColumnValues(const TCommandLine& line, std::string_view tag,
                                           int columns) {
  if (line.Word(tag).code != TReadCode::kRead) return {TReadCode::kTagAbsent, {}};
  TReading<std::vector<double>> values = line.Doubles(tag);
  if (values.code != TReadCode::kRead || std::ssize(values.value) != columns) {
    Fail("error parsing array");
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
  const auto inputs = SideBounds(line, kInputTags, set->Inputs());
  const auto outputs = SideBounds(line, kOutputTags, set->Outputs());
  if (!inputs && !outputs) Fail(kNothing);
  interpreter.Insert({destination, mapping(set.get(), inputs.value_or(TColumnBounds()),
                                           outputs.value_or(TColumnBounds()))});
  set->ResetCursor();
  return kDone;
}

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

constexpr TTag kSourceTag = TTag{"source", kAlias, "a data set"}.Of("Data");
constexpr TTag kDestinationTag = {"destination", kNewAlias, "the name of the new set"};

constexpr TTag kShuffleTags[] = {kSourceTag, kDestinationTag, kSeedTag};
constexpr TForm kShuffle[] = {
    {"", "makes a data set of the same rows in random order",
     "shuffle source d destination mixed seed 3", kShuffleTags, Shuffle},
};

constexpr TTag kScaleTags[] = {
    kSourceTag,
    kDestinationTag,
    TTag{"method", kChoice, "the mapping"}.Of("linear"),
    TTag{"inputgmax", kDouble, "the largest value of all inputs"}.Or(kNoBounds),
    TTag{"inputgmin", kDouble, "the least value of all inputs"}.Or(kNoBounds),
    TTag{"outputgmax", kDouble, "the largest value of all outputs"}.Or(kNoBounds),
    TTag{"outputgmin", kDouble, "the least value of all outputs"}.Or(kNoBounds),
    TTag{"inputcmaxs", kDoubles, "the largest value of each input"}.Or(kNoBounds),
    TTag{"inputcmins", kDoubles, "the least value of each input"}.Or(kNoBounds),
    TTag{"outputcmaxs", kDoubles, "the largest value of each output"}.Or(kNoBounds),
    TTag{"outputcmins", kDoubles, "the least value of each output"}.Or(kNoBounds),
};
constexpr TForm kNormalise[] = {
    {"", "makes a data set whose values lie between 0 and 1",
     "normalise source d destination n method linear inputgmax 10 inputgmin 0", kScaleTags,
     Normalise},
};
constexpr TForm kDenormalise[] = {
    {"", "undoes normalise",
     "denormalise source d destination e method linear outputcmaxs {8} "
     "outputcmins {2}",
     kScaleTags, Denormalise},
};

constexpr TCommand kCommands[] = {
    {"shuffle", "puts rows in random order", kShuffle, FormByWord},
    {"normalise", "maps values onto 0 to 1", kNormalise, FormByWord},
    {"denormalise", "undoes normalise", kDenormalise, FormByWord},
};

}  // namespace

const TFamily kManipulation = {"data sets", kCommands};

}  // namespace kiln::commands
