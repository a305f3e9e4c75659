#include "Interpreter/TrainLesson.h"

#include <cmath>
#include <span>
#include <string>

#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/NumberScan.h"
#include "Shared/Text.h"
#include "Tarn/TFrozenCentres.h"

namespace kiln::commands {

namespace {

// Fails unless all of these values of row `n`, counted from 0, are numbers that weights can take
// up.
void CheckFinite(std::string_view alias, int n, std::span<const double> values,
                 std::string_view side) {
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (std::isfinite(values[k])) continue;
    Fail(alias, " has no finite number in row ", std::to_string(n + 1), ", column ",
         std::to_string(k + 1), " of the ", side);
  }
}

constexpr char kFreezeWords[] = "freeze takes {centres}, {inputcentres} or {outputcentres}";

// What may be frozen, by the words behind "freeze".
struct TFreezing {
  std::string_view word;
  bool inputs;
  bool outputs;
};

constexpr TFreezing kFreezings[] = {
    {"centres", true, true}, {"inputcentres", true, false}, {"outputcentres", false, true}};

}  // namespace

void CheckFiniteInputs(std::string_view alias, const Data& set) {
  for (int n = 0; n < set.DataRows(); ++n) CheckFinite(alias, n, set.Row(n).Inputs, "inputs");
}

void CheckFits(const TLesson& lesson, std::string_view alias, const Data& set,
               const TBasicNetwork& network) {
  const std::string owner = "the network of " + std::string(lesson.trainer_alias);
  RequireColumns(alias, set.Inputs(), "inputs", owner, network.NumInputs());
  RequireColumns(alias, set.Outputs(), "outputs", owner, network.NumOutputs());
  if (set.DataRows() == 0) Fail(alias, " has no rows");
  CheckFiniteInputs(alias, set);
  for (int n = 0; n < set.DataRows(); ++n) CheckFinite(alias, n, set.Row(n).Outputs, "outputs");
}

std::optional<TValidationSet> NamedValidation(const TCommandLine& line, const TLesson& lesson,
                                              const TBasicNetwork& network) {
  const TReading<std::string_view> patience = line.WordOfTag("patience");
  const bool has_end = patience.code == TReadCode::kRead;
  const TReading<std::string_view> validation = line.WordOfTag("validation");
  if (validation.code != TReadCode::kRead) {
    if (has_end) Fail("tag validation not found");
    return std::nullopt;
  }
  const std::string_view alias = validation.value;
  RefuseReserved(alias);
  const Data& set = *RequiredObject<Data>(lesson.registry, alias, " is not of type data");
  CheckFits(lesson, alias, set, network);
  const std::int64_t epochs = ScanInteger(patience.value).value_or(0);
  return TValidationSet{set, has_end ? AtLeast(1, epochs, "patience") : 0};
}

std::unique_ptr<TFrozenCentres> FreezeCentres(const TCommandLine& line, const TLesson& lesson) {
  const auto words = line.WordsAt("freeze");
  if (!words) {
    if (line.WordOfTag("freeze").code == TReadCode::kRead) Fail(kFreezeWords);
    return nullptr;
  }
  bool inputs = false;
  bool outputs = false;
  for (const std::string_view element : *words) {
    const TFreezing* freezing = FindNoCase(kFreezings, element, &TFreezing::word);
    if (!freezing) Fail(kFreezeWords);
    inputs |= freezing->inputs;
    outputs |= freezing->outputs;
  }
  TTarn* const tarn = TrainedTarn(lesson.trainer);
  if (!tarn) Fail("the network of ", lesson.trainer_alias, " has no centres");
  auto frozen = std::make_unique<TFrozenCentres>(*tarn);
  if (inputs) frozen->FreezeInputs();
  if (outputs) frozen->FreezeOutputs();
  return frozen;
}

}  // namespace kiln::commands
