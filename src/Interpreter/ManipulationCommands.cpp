#include "DataTools/DataManip/TDataManip.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/Manipulation.h"
#include "Shared/Text.h"

namespace kiln::commands {

TRemake RequiredRemake(const TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view source = RequiredAlias(line, "source");
  const TRegistryNode& node = RequiredEntry(interpreter, source);
  const std::string_view destination = RequiredNewAlias(interpreter, line, "destination");
  return {source, RequiredObject<Data>(node, source, " is not of type Data"), destination};
}

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

std::vector<int> RequiredRows(const TCommandLine& line) {
  std::vector<int> rows;
  for (const std::int64_t count : Required(line.Longs("rows"), "tag rows not found")) {
    rows.push_back(AtLeast(1, count, "rows"));
  }
  return rows;
}

void RequireAsMany(std::string_view tag, std::size_t values, std::string_view other,
                   std::size_t wanted) {
  if (values == wanted) return;
  Fail(tag, " has ", std::to_string(values), " elements but ", other, " has ",
       std::to_string(wanted));
}

namespace {

using enum TValueKind;

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
  const TRemake remake = RequiredRemake(interpreter, line);
  const int steps = AtLeast(1, Required(line.Long("steps"), "tag steps not found"), "steps");
  interpreter.Insert({remake.destination, stack(remake.source.get(), steps)});
  remake.source->ResetCursor();
  return kDone;
}

TAnswer Lag(TInterpreter& interpreter, const TCommandLine& line) {
  return StackSteps(interpreter, line, TDataManip::TimeStepLag);
}

TAnswer Advance(TInterpreter& interpreter, const TCommandLine& line) {
  return StackSteps(interpreter, line, TDataManip::TimeStepAdvance);
}

TAnswer Shuffle(TInterpreter& interpreter, const TCommandLine& line) {
  const TRemake remake = RequiredRemake(interpreter, line);
  StartRandom(line);
  interpreter.Insert({remake.destination, TDataManip::Shuffle(remake.source.get())});
  remake.source->ResetCursor();
  return kDone;
}

constexpr TTag kSourceTag = TTag{"source", kAlias, "a data set"}.Of("Data");
constexpr TTag kDestinationTag = {"destination", kNewAlias, "the name of the new set"};

constexpr TTag kShuffleTags[] = {kSourceTag, kDestinationTag, kSeedTag};
constexpr TForm kShuffle[] = {
    {"", "makes a data set of the same rows in random order",
     "shuffle source d destination mixed seed 3", kShuffleTags, Shuffle},
};

constexpr char kNoBounds[] = "none";

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
     "denormalise source d destination e method linear outputgmax 8 outputgmin 2", kScaleTags,
     Denormalise},
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
     "divide source d destination {learn, test} shares {0.5, 0.5} stratified off", kDivideTags,
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
    TTag{"sources", kAliases, "a data set for each class"}.Of("Data"),
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
