#include <cmath>
#include <map>

#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"

namespace kiln::commands {

namespace {

using enum TValueKind;

// A data set whose rows name units of a map by their coordinates.
class TUnitRows {
 public:
  // The coordinates are the outputs of the set when there is one for each dimension, else the
  // inputs. Fails when neither side fits.
  TUnitRows(std::string_view alias, const Data& set, std::string_view map_alias,
            const TMapGrid& grid)
      : alias_(alias), map_alias_(map_alias), set_(set), grid_(grid), side_(CoordinateSide()) {}

  // Calls visit(row, unit) with every row, oldest first. Fails at coordinates without a unit.
  template <typename TVisit>
  void ForEach(const TVisit& visit) const {
    std::vector<int> coordinates(grid_.NumDimensions());
    for (int n = 0; n < set_.DataRows(); ++n) {
      const DataRow row = set_.Row(n);
      ReadCoordinates(row.*side_, coordinates);
      visit(row, grid_.UnitAt(coordinates));
    }
  }

 private:
  using TSide = std::span<const double> DataRow::*;

  TSide CoordinateSide() const {
    const int dimensions = static_cast<int>(grid_.NumDimensions());
    if (set_.Outputs() == dimensions) return &DataRow::Outputs;
    if (set_.Inputs() == dimensions) return &DataRow::Inputs;
    Fail(alias_, " has ", std::to_string(set_.Inputs()), " inputs and ",
         std::to_string(set_.Outputs()), " outputs but ", map_alias_, " has ",
         std::to_string(dimensions), " dimensions");
  }

  void ReadCoordinates(std::span<const double> values, std::vector<int>& coordinates) const {
    for (std::size_t k = 0; k < values.size(); ++k) {
      const double value = values[k];
      if (!(value >= 0.0 && value < grid_.Sizes()[k] && value == std::floor(value))) {
        Fail(alias_, " has coordinates of no unit of ", map_alias_);
      }
      coordinates[k] = static_cast<int>(value);
    }
  }

  std::string_view alias_;
  std::string_view map_alias_;
  const Data& set_;
  const TMapGrid& grid_;
  TSide side_;
};

TAnswer Recall(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network", "cannot find tag network");
  const auto network = AsNetwork(RequiredEntry(interpreter, name));
  if (!network) Fail(name, " is not an ANN");
  const std::string_view input = RequiredAlias(line, "input", "cannot find tag input");
  const auto set = RequiredObject<Data>(interpreter, input, " must be type data");
  const std::string_view output = RequiredAlias(line, "output", "cannot find tag output");
  if (interpreter.Exists(output)) Fail("object ", output, " already exists");
  RequireColumns(input, set->Inputs(), "inputs", name, network->NumInputs());
  interpreter.Insert({output, network->Recall(set.get())});
  set->ResetCursor();
  return kDone;
}

TAnswer Map(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto map = RequiredObject<TKohonenNetwork>(interpreter, name, " is not a Kohonen network");
  const std::string_view input = RequiredAlias(line, "input");
  const auto set = RequiredObject<Data>(interpreter, input, " is not of type Data");
  const std::string_view output = RequiredNewAlias(interpreter, line, "output");
  RequireColumns(input, set->Inputs(), "inputs", name, map->NumInputs());
  interpreter.Insert({output, map->RecallCoordinates(set.get())});
  set->ResetCursor();
  return kDone;
}

TAnswer Label(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view name = RequiredAlias(line, "network");
  const auto network =
      RequiredObject<TKohonenNetwork>(interpreter, name, " is not of type Kohonen");
  const std::string_view map = RequiredAlias(line, "map");
  const auto labelled = RequiredObject<Data>(interpreter, map, " is not of type data");
  const std::string_view coord = RequiredAlias(line, "coord");
  const auto asked = RequiredObject<Data>(interpreter, coord, " is not of type data");
  const std::string_view output = RequiredNewAlias(interpreter, line, "output");
  if (!labelled->HasLabels()) Fail(map, " has no labels");

  const TUnitRows labelled_rows(map, *labelled, name, network->Grid());
  const TUnitRows asked_rows(coord, *asked, name, network->Grid());
  std::map<std::size_t, LabelList> labels;  // of each unit that has any
  labelled_rows.ForEach([&](const DataRow& row, std::size_t unit) {
    for (const LabelEntry& entry : row.Labels->Entries()) {
      labels[unit].Append(entry.Name, entry.Value);
    }
  });
  auto result = std::make_unique<Data>(asked->DataRows(), asked->Inputs(), asked->Outputs(), true);
  result->SetNames(asked->Names());
  asked_rows.ForEach([&](const DataRow& row, std::size_t unit) {
    const auto found = labels.find(unit);
    result->AddRow(row.Inputs, row.Outputs, found != labels.end() ? &found->second : nullptr);
  });
  interpreter.Insert({output, std::move(result)});
  labelled->ResetCursor();
  asked->ResetCursor();
  return kDone;
}

constexpr TTag kOutputTag = {"output", kNewAlias, "the name of the new data set"};
constexpr TTag kMapTag = TTag{"network", kAlias, "the map"}.Of("Kohonen");

constexpr TTag kRecallTags[] = {
    TTag{"network", kAlias, "a network of any kind"}.Of("MLP Tarn Kohonen"),
    TTag{"input", kAlias, "the data set whose inputs it is shown"}.Of("Data"),
    kOutputTag,
};
constexpr TForm kRecall[] = {
    {"", "makes a data set of what a network answers", "recall network net input d output o",
     kRecallTags, Recall},
};

constexpr TTag kMapTags[] = {
    kMapTag,
    TTag{"input", kAlias, "the data set whose rows are to be found on it"}.Of("Data"),
    kOutputTag,
};
constexpr TForm kMap[] = {
    {"", "makes a data set of where rows stand on a map", "map network k input d output m",
     kMapTags, Map},
};

constexpr TTag kLabelTags[] = {
    kMapTag,
    TTag{"map", kAlias, "rows with labels and the coordinates of their units"}.Of("Data"),
    TTag{"coord", kAlias, "rows with the coordinates to be labelled"}.Of("Data"),
    kOutputTag,
};
constexpr TForm kLabel[] = {
    {"", "makes a data set of places on a map, with the labels of rows there",
     "label network k map m coord m output named", kLabelTags, Label},
};

constexpr TCommand kCommands[] = {
    {"recall", "runs a network on data", kRecall, FormByWord},
    {"map", "finds rows on a map", kMap, FormByWord},
    {"label", "names places on a map", kLabel, FormByWord},
};

}  // namespace

const TFamily kRecalls = {"networks at work", kCommands};

}  // namespace kiln::commands
