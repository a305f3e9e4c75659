#include <algorithm>
#include <numeric>

#include "DataObject/Data.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/Training/TTrainHistory.h"
#include "Plot/AnswersPicture.h"
#include "Plot/DataPicture.h"
#include "Plot/Gnuplot.h"
#include "Plot/HistoryPicture.h"
#include "Plot/MapPicture.h"
#include "Plot/PictureFile.h"
#include "Plot/SetColumns.h"
#include "Plot/TermsPicture.h"
#include "Plot/TextPicture.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "Shared/Ranks.h"
#include "Shared/Say.h"
#include "Shared/Text.h"
#include "Tarn/RuleExtraction/NetworkLabels.h"
#include "Tarn/RuleExtraction/TNetRule.h"
#include "Tarn/TTarn.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// What is to be drawn.
TSubject Subject(const TInterpreter& interpreter, const TCommandLine& line) {
  return RequiredSubject(interpreter, Required(line.Word("plot"), "plot takes an object"));
}

std::string CountedRows(int rows) {
  return Counted(static_cast<std::size_t>(rows), "row");
}

// The file that the line names; nothing where the picture is for the terminal.
std::optional<std::string> PicturePath(const TInterpreter& interpreter, const TCommandLine& line) {
  if (line.Word("filename").code != TReadCode::kRead && interpreter.Screen()) return std::nullopt;
  std::string path = RequiredPath(line, "tag filename not found");
  if (!PictureFile::HasKnownEnding(path)) {
    Fail(path, " does not end in ", PictureFile::kEndings);
  }
  return path;
}

// Throws TCommandFailure when the file cannot be drawn or written.
void SaveTo(const std::string& path, const TPicture& picture) {
  try {
    PictureFile::Save(path, picture);
  } catch (const TGnuplotMissing& missing) {
    const std::string stem = path.substr(0, path.rfind('.'));
    Fail(missing.what(), ": filename (", stem, ".gp) writes its script");
  } catch (const TGnuplotError& failure) {
    Fail(failure.what());
  } catch (const FileTools::SaveError& failure) {
    Fail(failure.Message());
  }
}

// Draws what the line names by `make`(interpreter, line, subject).
using TMaker = TPicture (*)(const TInterpreter& interpreter, const TCommandLine& line,
                            const TSubject& subject);

template <TMaker make>
TAnswer Plot(TInterpreter& interpreter, const TCommandLine& line) {
  const TSubject subject = Subject(interpreter, line);
  const std::optional<std::string> path = PicturePath(interpreter, line);
  const TPicture picture = make(interpreter, line, subject);
  if (path) {
    Ranks::OnFirst([&] { SaveTo(*path, picture); });
  } else {
    const auto [columns, has_unicode] = interpreter.Screen()();
    std::string text =
        DrawText(picture, columns, has_unicode ? TCharacters::kUnicode : TCharacters::kAscii);
    text.pop_back();  // the last line end
    SayLine(text);
  }
  return kDone;
}

// The data set that the line names; null where it names none.
std::shared_ptr<const Data> NamedSet(const TInterpreter& interpreter, const TCommandLine& line) {
  if (line.Word("data").code != TReadCode::kRead) return nullptr;
  const std::string_view alias = RequiredAlias(line, "data");
  return RequiredObject<Data>(interpreter, alias, " is not of type Data");
}

// The columns that the line lists.
std::vector<std::size_t> ListedColumns(const TCommandLine& line, std::string_view alias,
                                       const TSetColumns& columns) {
  std::vector<std::size_t> listed;
  for (const std::string_view element :
       line.WordsAt("columns").value_or(std::vector<std::string_view>())) {
    const auto column = columns.Find(element);
    if (!column) Fail(alias, " has no column ", element);
    listed.push_back(*column);
  }
  return listed;
}

// --- Makers ----------------------------------------------------------------------------------

TPicture OfTrainer(const TInterpreter& /*interpreter*/, const TCommandLine& /*line*/,
                   const TSubject& trainer) {
  const TTrainHistory& history = *TrainingHistory(trainer.node);
  if (NumDrawn(history) < 2) {
    Fail(trainer.alias, " has ", Counted(NumDrawn(history), "point"),
         " to draw: a curve takes two epochs of training");
  }
  return HistoryPicture(trainer.alias, history, AsGeneticTrainer(trainer.node) != nullptr);
}

// The names of the inputs of a map, by the columns of the set where there is one.
TPicture OfComponents(const TCommandLine& line, const TSubject& subject, const TKohonenNetwork& map,
                      const Data* set) {
  if (map.Grid().NumDimensions() > 2) Fail(subject.alias, " has more than two dimensions");
  const Data unnamed(0, static_cast<std::int64_t>(map.NumInputs()), 0, false);
  const TSetColumns columns(set ? *set : unnamed);
  const std::vector<std::size_t> inputs = ListedColumns(line, subject.alias, columns);
  if (inputs.empty()) Fail("columns takes the inputs to draw");
  std::vector<std::string> names;
  for (const std::size_t input : inputs) {
    if (input >= map.NumInputs()) Fail(columns.Name(input), " is no input of ", subject.alias);
    names.push_back(columns.Name(input));
  }
  return ComponentsPicture(subject.alias, map, inputs, names);
}

TPicture OfMap(const TInterpreter& interpreter, const TCommandLine& line, const TSubject& subject) {
  const auto map = subject.node.As<TKohonenNetwork>();
  const auto set = NamedSet(interpreter, line);
  if (set) {
    RequireColumns(line.Word("data").value, set->Inputs(), "inputs", subject.alias,
                   map->NumInputs());
  }
  if (line.WordsAt("columns")) return OfComponents(line, subject, *map, set.get());
  if (map->Grid().NumUnits() < 2) Fail(subject.alias, " has only one unit");
  if (set && RowClassesOf(*set).names.empty()) {
    Fail(line.Word("data").value, " has neither labels nor classes");
  }
  return DistancesPicture(subject.alias, *map, set.get());
}

// How a network answers the set that the line names.
TPicture OfAnswers(const TCommandLine& line, const TSubject& subject, const TBasicNetwork& network,
                   const Data& set) {
  const std::string_view alias = line.Word("data").value;
  RequireColumns(alias, set.Inputs(), "inputs", subject.alias, network.NumInputs());
  RequireColumns(alias, set.Outputs(), "outputs", subject.alias, network.NumOutputs());
  if (set.DataRows() < 2) {
    Fail(alias, " has ", CountedRows(set.DataRows()), ": a picture takes two");
  }
  if (!HasClasses(set)) return AnswersPicture(subject.alias, alias, network, set);
  if (network.NumOutputs() > kMostClassesInTable) {
    Fail(alias, " has ", std::to_string(network.NumOutputs()), " classes: a table has room for ",
         std::to_string(kMostClassesInTable));
  }
  return ConfusionPicture(subject.alias, alias, set, *MeasureConfusion(network, set));
}

TPicture OfPerceptron(const TInterpreter& interpreter, const TCommandLine& line,
                      const TSubject& subject) {
  const auto set = NamedSet(interpreter, line);
  if (!set) Fail("tag data not found");
  return OfAnswers(line, subject, *AsNetwork(subject.node), *set);
}

// Whether the line asks for rules, not for terms.
bool WantsRules(const TCommandLine& line) {
  return EqualNoCase(line.Word("method").value, "rules");
}

TPicture OfRuleSet(const TSubject& subject, const TFuzzyRuleSet& rules, bool wants_rules) {
  if (wants_rules) {
    if (rules.Rules().Count() == 0) Fail(subject.alias, " has no rules");
    return RulesPicture(subject.alias, rules);
  }
  if (!HasTerms(rules.Inputs()) && !HasTerms(rules.Outputs())) Fail(subject.alias, " has no terms");
  return TermsPicture(subject.alias, rules.Inputs(), rules.Outputs());
}

TPicture OfRules(const TInterpreter& /*interpreter*/, const TCommandLine& line,
                 const TSubject& subject) {
  return OfRuleSet(subject, *subject.node.As<TFuzzyRuleSet>(), WantsRules(line));
}

TPicture OfTarn(const TInterpreter& interpreter, const TCommandLine& line,
                const TSubject& subject) {
  const auto network = subject.node.As<TTarn>();
  const bool wants_rules = WantsRules(line);
  std::shared_ptr<const TNetLabel> labels;
  if (line.Word("labels").code == TReadCode::kRead) {
    labels = RequiredObject<TNetLabel>(interpreter, RequiredAlias(line, "labels"),
                                       " is not of type TarnLabel");
  }
  if (const auto set = NamedSet(interpreter, line)) {
    for (const std::string_view tag : {"method", "labels"}) {
      if (line.Word(tag).code == TReadCode::kRead) Fail(tag, " does not go with data");
    }
    return OfAnswers(line, subject, *network, *set);
  }
  const TKQstructure as_they_are("Params");
  return OfRuleSet(subject, TNetRule::RETarn(*network, as_they_are, labels.get()), wants_rules);
}

TPicture OfData(const TInterpreter& /*interpreter*/, const TCommandLine& line,
                const TSubject& subject) {
  const auto set = subject.node.As<Data>();
  const TSetColumns columns(*set);
  if (columns.Count() == 0) Fail(subject.alias, " has no columns");
  std::vector<std::size_t> drawn = ListedColumns(line, subject.alias, columns);
  if (!line.WordsAt("columns")) {
    drawn.resize(std::min<std::size_t>(columns.Count(), 2));
    std::iota(drawn.begin(), drawn.end(), 0);
  }
  if (drawn.empty() || drawn.size() > 2) Fail("columns takes one column or two");
  const int rows = NumFinite(*set, drawn.front(), drawn.back());
  if (rows < 2) {
    Fail(subject.alias, " has ", CountedRows(rows), " of numbers: a picture takes two");
  }
  if (drawn.size() == 1) return DistributionPicture(subject.alias, *set, drawn.front());
  return ScatterPicture(subject.alias, *set, drawn.front(), drawn.back());
}

// --- Rows ------------------------------------------------------------------------------------

constexpr TTag kPathTag =
    TTag{"filename", kPath, "what to draw into: .svg, .png, .pdf, .txt or .gp"}.Or("the terminal");
constexpr TTag kMethodTag =
    TTag{"method", kChoice, "what to draw of rules"}.Of("terms rules").Or("terms");

constexpr char kTrainers[] = "BP TarnBP TarnLWF MLPGA TarnGA KohonenTrainer";
constexpr TTag kTrainerTags[] = {TTag{"plot", kAlias, "a trainer"}.Of(kTrainers), kPathTag};
constexpr TTag kPerceptronTags[] = {
    TTag{"plot", kAlias, "a perceptron"}.Of("MLP"),
    TTag{"data", kAlias, "the data set that it answers"}.Of("Data"),
    kPathTag,
};
constexpr TTag kTarnTags[] = {
    TTag{"plot", kAlias, "a fuzzy network"}.Of("Tarn"),
    kMethodTag,
    TTag{"labels", kAlias, "names for variables and terms"}.Of("TarnLabels").Or("A, B, ..."),
    TTag{"data", kAlias, "a data set: shows how the network answers it"}.Of("Data").Or("none"),
    kPathTag,
};
constexpr TTag kMapTags[] = {
    TTag{"plot", kAlias, "a map"}.Of("Kohonen"),
    TTag{"data", kAlias, "a set whose classes name units, and its columns inputs"}.Of("Data").Or(
        "no names"),
    TTag{"columns", kWords, "inputs whose component planes are shown"}.Or("distances are shown"),
    kPathTag,
};
constexpr TTag kRulesTags[] = {TTag{"plot", kAlias, "rules"}.Of("FuzzyRules"), kMethodTag,
                               kPathTag};
constexpr TTag kDataTags[] = {
    TTag{"plot", kAlias, "a data set"}.Of("Data"),
    TTag{"columns", kWords, "two columns to set against each other, or one"}.Or("the first two"),
    kPathTag,
};

constexpr TForm kPlot[] = {
    {"", "draws training errors", "plot teacher filename (errors.txt)", kTrainerTags,
     Plot<OfTrainer>, kTrainers},
    {"", "draws how a perceptron answers a data set", "plot net data d filename (answers.txt)",
     kPerceptronTags, Plot<OfPerceptron>, "MLP"},
    {"", "draws terms or rules, or how the network answers",
     "plot fuzzy labels words filename (terms.gp)", kTarnTags, Plot<OfTarn>, "Tarn"},
    {"", "draws distances between units, or component planes", "plot k data d filename (map.gp)",
     kMapTags, Plot<OfMap>, "Kohonen"},
    {"", "draws terms or rules", "plot found method rules filename (rules.gp)", kRulesTags,
     Plot<OfRules>, "FuzzyRules"},
    {"", "draws columns of a data set", "plot d columns {0, 1} filename (data.txt)", kDataTags,
     Plot<OfData>, "Data"},
};

// The form for the kind of object that the line names.
const TForm& FormByObject(const TCommand& command, const TInterpreter& interpreter,
                          const TCommandLine& line) {
  const std::string_view kind = Subject(interpreter, line).node.Kind();
  for (const TForm& form : command.forms) {
    if (HasWord(form.kinds, kind)) return form;
  }
  Fail("cannot plot this type of object");
}

constexpr TCommand kCommands[] = {
    {.word = "plot",
     .help = "draws a picture of an object",
     .forms = kPlot,
     .choose = FormByObject,
     .is_strict = true},
};

}  // namespace

const TFamily kPictures = {"pictures", kCommands};

}  // namespace kiln::commands
