#include "DataObject/Data.h"
#include "DataTools/DataManip/TDataStats.h"
#include "Interpreter/Checks.h"
#include "Interpreter/CreateCommands.h"

namespace kiln::commands {

int CreateData(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  if (interpreter.Exists(alias)) Fail("alias ", alias, " already exists");
  const std::int64_t inputs = Required(line.Long("inputs"), "tag inputs not found");
  const std::int64_t outputs = Required(line.Long("outputs"), "tag outputs not found");
  const std::int64_t rows = Required(line.Long("rows"), "tag rows not found");
  const bool labels = RequiredBoolean(line, "labels");
  const int input_columns = AtLeast(0, inputs, "inputs");
  const int output_columns = AtLeast(0, outputs, "outputs");
  const int positions = AtLeast(0, rows, "rows");
  interpreter.Insert(
      {alias, std::make_unique<Data>(positions, input_columns, output_columns, labels)});
  return kDone;
}

int CreateDataStats(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredNewAlias(interpreter, line, "alias");
  const std::string_view source = RequiredAlias(line, "source");
  auto set = RequiredObject<Data>(interpreter, source, " is not type Data");
  interpreter.Insert({alias, std::make_unique<TDataStats>(std::move(set))});
  return kDone;
}

}  // namespace kiln::commands
