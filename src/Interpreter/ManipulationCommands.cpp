#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "DataTools/DataManip/TDataManip.h"
#include "DataTools/DataManip/TDataStats.h"
#include "DataTools/DataManip/TDivision.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/NumberScan.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// A getter of one figure for every column of a side.
using TFigures = std::vector<double> (TDataStats::*)();

// The tags of the bounds of one side: a list with a value for each column, or one value for all.
struct TBoundTags {
  std::string_view column_maxima;
  std::string_view column_minima;
  std::string_view maximum;
  std::string_view minimum;
  TFigures maxima;  // in statistics
  TFigures minima;
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
constexpr char kNoArray[] = "error parsing array";
constexpr char kNoBounds[] = "none";

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
  const auto check = [&](int columns, const char* side, TFigures figures) {
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

// --- Rows ------------------------------------------------------------------------------------

// What commands are told that make one set of another.
struct TPair {
  std::string_view source_alias;
  std::shared_ptr<Data> source;
  std::string_view destination;
};

TPair RequiredPair(const TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  return {source, RequiredObject<Data>(node, source, " is not of type Data"), destination};
}

// Each element of a list as one word.
std::vector<std::string_view> RequiredWords(const TCommandLine& line, std::string_view tag,
                                            std::string_view message) {
  std::vector<std::string_view> words = Required(line.Words(tag), message);
  for (std::string_view& word : words) {
    word = TrimBlanks(word);
    if (word.empty() || word.find(' ') != word.npos) Fail(kNoArray);
  }
  if (words.empty()) Fail(kNoArray);
  return words;
}

std::vector<std::string_view> RequiredDestinations(const TInterpreter& interpreter,
                                                   const TCommandLine& line) {
  auto aliases = RequiredWords(line, "destination", "tag destination not found");
  for (std::size_t i = 0; i < aliases.size(); ++i) {
    RefuseReserved(aliases[i]);
    const auto others = std::span(aliases).first(i);
    if (interpreter.Exists(aliases[i]) || FindNoCase(others, aliases[i])) {
      Fail(aliases[i], " already exists");
    }
  }
  return aliases;
}

void RequireAsMany(std::string_view tag, std::size_t values, std::string_view other,
                   std::size_t wanted) {
  if (values == wanted) return;
  Fail(tag, " has ", std::to_string(values), " elements but ", other, " has ",
       std::to_string(wanted));
}

// The numbers of rows in the list "rows".
std::vector<int> RequiredRows(const TCommandLine& line) {
  std::vector<int> rows;
  for (const std::int64_t count : Required(line.Longs("rows"), "tag rows not found")) {
    rows.push_back(AtLeast(1, count, "rows"));
  }
  return rows;
}

// The sizes of parts of so many rows that have the shares in the list "shares".
std::vector<int> RowsOfShares(const TCommandLine& line, int all_rows) {
  std::vector<int> rows;
  double end = 0.0;
  int rows_before = 0;
  for (const double share : Required(line.Doubles("shares"), kNoArray)) {
    if (!(share > 0.0)) Fail("shares must be above 0");
    end += share;
    if (!(end <= 1.0 + 1e-9)) Fail("shares must add up to 1 at most");
    const int rows_so_far = std::min(all_rows, static_cast<int>(std::lround(end * all_rows)));
    rows.push_back(AtLeast(1, rows_so_far - rows_before, "the rows of each share"));
    rows_before = rows_so_far;
  }
  return rows;
}

TAnswer Divide(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const auto aliases = RequiredDestinations(interpreter, line);
  const auto set = RequiredObject<Data>(node, source, " is not of type Data");
  const bool by_shares = line.Word("shares").code == TReadCode::kRead;
  const auto sizes = by_shares ? RowsOfShares(line, set->DataRows()) : RequiredRows(line);
  RequireAsMany(by_shares ? "shares" : "rows", sizes.size(), "destination", aliases.size());
  const auto asked = std::accumulate(sizes.begin(), sizes.end(), std::int64_t{0});
  if (asked > set->DataRows()) {
    Fail(source, " has ", std::to_string(set->DataRows()), " rows, not ", std::to_string(asked));
  }
  const bool stratified =
      line.Word("stratified").code == TReadCode::kRead && RequiredBoolean(line, "stratified");
  if (stratified && !set->HasLabels() && set->Outputs() == 0) {
    Fail(source, " has neither labels nor outputs");
  }

  const TParts parts = stratified ? DivideByClass(ClassesOf(*set), sizes) : DivideInOrder(sizes);
  std::vector<std::unique_ptr<Data>> sets;
  for (const auto& rows : parts) sets.push_back(TDataManip::Rows(set.get(), rows));
  for (std::size_t i = 0; i < sets.size(); ++i) {
    interpreter.Insert({aliases[i], std::move(sets[i])});
  }
  set->ResetCursor();
  return kDone;
}

TAnswer Recombine(TInterpreter& interpreter, const TCommandLine& line) {
  std::vector<std::shared_ptr<Data>> sources;
  for (const std::string_view alias : RequiredWords(line, "sources", "tag sources not found")) {
    RefuseReserved(alias);
    sources.push_back(RequiredObject<Data>(interpreter, alias, " is not of type Data"));
  }
  const std::vector<int> rows = RequiredRows(line);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  RequireAsMany("rows", rows.size(), "sources", sources.size());
  StartRandom(line);
  std::vector<const Data*> sets;
  sets.reserve(sources.size());
  for (const auto& source : sources) sets.push_back(source.get());
  interpreter.Insert({destination, TDataManip::Recombine(sets, rows)});
  for (const auto& source : sources) source->ResetCursor();
  return kDone;
}

TAnswer StackSteps(TInterpreter& interpreter, const TCommandLine& line,
                   std::unique_ptr<Data> (*stack)(const Data* source, int steps)) {
  const TPair pair = RequiredPair(interpreter, line);
  const int steps = AtLeast(1, Required(line.Long("steps"), "tag steps not found"), "steps");
  interpreter.Insert({pair.destination, stack(pair.source.get(), steps)});
  pair.source->ResetCursor();
  return kDone;
}

TAnswer Lag(TInterpreter& interpreter, const TCommandLine& line) {
  return StackSteps(interpreter, line, TDataManip::TimeStepLag);
}

TAnswer Advance(TInterpreter& interpreter, const TCommandLine& line) {
  return StackSteps(interpreter, line, TDataManip::TimeStepAdvance);
}

// --- Columns ---------------------------------------------------------------------------------

using TSide = std::span<const double> DataRow::*;

// Finds columns of a set by name, among those of one side first, or by number on that side.
class TColumnFinder {
 public:
  TColumnFinder(std::string_view alias, const Data& set) : alias_(alias), set_(set) {}

  ColumnPlace Find(std::string_view word, TSide side) const {
    const TSide other = side == &DataRow::Inputs ? &DataRow::Outputs : &DataRow::Inputs;
    for (const TSide candidate : {side, other}) {
      const auto& names = Names(candidate);
      const auto found = std::ranges::find(names, word);
      if (found != names.end()) return {candidate, static_cast<int>(found - names.begin())};
    }
    const bool is_number = word.find_first_not_of("0123456789") == word.npos;
    const std::int64_t number = is_number ? ScanInteger(word).value_or(-1) : -1;
    if (number < 0 || number >= Columns(side)) Fail(alias_, " has no column ", word);
    return {side, static_cast<int>(number)};
  }

  std::vector<ColumnPlace> All(TSide side) const {
    std::vector<ColumnPlace> places;
    places.reserve(static_cast<std::size_t>(Columns(side)));
    for (int c = 0; c < Columns(side); ++c) places.push_back({side, c});
    return places;
  }

 private:
  const std::vector<std::string>& Names(TSide side) const {
    return side == &DataRow::Inputs ? set_.Names().Inputs : set_.Names().Outputs;
  }
  int Columns(TSide side) const {
    return side == &DataRow::Inputs ? set_.Inputs() : set_.Outputs();
  }

  std::string_view alias_;
  const Data& set_;
};

// The columns of one side of the new set; all of that side where the line does not name them.
std::vector<ColumnPlace> ListedColumns(const TCommandLine& line, std::string_view tag,
                                       const TColumnFinder& finder, TSide side) {
  if (line.Word(tag).code != TReadCode::kRead) return finder.All(side);
  std::vector<ColumnPlace> places;
  for (const std::string_view word : Required(line.Words(tag), kNoArray)) {
    places.push_back(finder.Find(TrimBlanks(word), side));
  }
  return places;
}

TAnswer Extract(TInterpreter& interpreter, const TCommandLine& line) {
  const TPair pair = RequiredPair(interpreter, line);
  const TColumnFinder finder(pair.source_alias, *pair.source);
  const auto inputs = ListedColumns(line, "inputs", finder, &DataRow::Inputs);
  const auto outputs = ListedColumns(line, "outputs", finder, &DataRow::Outputs);
  interpreter.Insert({pair.destination, TDataManip::Rearrange(pair.source.get(), inputs, outputs)});
  pair.source->ResetCursor();
  return kDone;
}

TAnswer Shuffle(TInterpreter& interpreter, const TCommandLine& line) {
  const TPair pair = RequiredPair(interpreter, line);
  StartRandom(line);
  interpreter.Insert({pair.destination, TDataManip::Shuffle(pair.source.get())});
  pair.source->ResetCursor();
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
    TTag{"stats", kAlias, "statistics that have the bounds"}.Of("DataStats").Or(kNoBounds),
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

constexpr TTag kDivideTags[] = {
    kSourceTag,
    {"destination", kWords, "the names of the parts"},
    TTag{"rows", kLongs, "how many rows each part has"}.Or("by shares"),
    TTag{"shares", kDoubles, "which share of the rows each part has"}.Or("by rows"),
    TTag{"stratified", kBoolean, "whether each class has its share in each part"}.Or("off"),
};
constexpr TForm kDivide[] = {
    {"", "makes data sets of parts of the rows",
     "divide source d destination {training, test} shares {0.5, 0.5} stratified off", kDivideTags,
     Divide},
};

constexpr TTag kStepsTags[] = {
    kSourceTag, kDestinationTag, {"steps", kLong, "how many rows stand side by side"}};
constexpr TForm kLag[] = {
    {"", "puts the inputs of the rows before beside those of each row",
     "lag source d destination memory steps 2", kStepsTags, Lag},
};
constexpr TForm kAdvance[] = {
    {"", "puts the inputs of the rows behind beside those of each row",
     "advance source d destination ahead steps 2", kStepsTags, Advance},
};

constexpr TTag kExtractTags[] = {
    kSourceTag, kDestinationTag,
    TTag{"inputs", kWords, "the columns that become inputs, by name or number"}.Or("all inputs"),
    TTag{"outputs", kWords, "the columns that become outputs"}.Or("all outputs")};
constexpr TForm kExtract[] = {
    {"", "makes a data set of some columns",
     "extract source d destination e inputs {1} outputs {0}", kExtractTags, Extract},
};

constexpr TTag kRecombineTags[] = {
    {"sources", kAliases, "a data set for each class"},
    {"rows", kLongs, "how many rows are drawn from each"},
    kDestinationTag,
    kSeedTag,
};
constexpr TForm kRecombine[] = {
    {"", "mixes rows drawn from several data sets",
     "recombine sources {d, d} rows {2, 1} destination mixed seed 3", kRecombineTags, Recombine},
};

constexpr TCommand kCommands[] = {
    {"divide", "makes parts of a data set", kDivide, FormByWord},
    {"recombine", "mixes rows of several data sets", kRecombine, FormByWord},
    {"extract", "chooses columns", kExtract, FormByWord},
    {"lag", "gives rows a memory", kLag, FormByWord},
    {"advance", "gives rows a foresight", kAdvance, FormByWord},
    {"shuffle", "puts rows in random order", kShuffle, FormByWord},
    {"normalise", "maps values onto 0 to 1", kNormalise, FormByWord},
    {"denormalise", "undoes normalise", kDenormalise, FormByWord},
};

}  // namespace

const TFamily kManipulation = {"data sets", kCommands};

}  // namespace kiln::commands
