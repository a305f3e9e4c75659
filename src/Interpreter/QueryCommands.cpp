#include "Interpreter/Answers.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"

namespace kiln::commands {

namespace {

int AliasExists(TInterpreter& interpreter, const CommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "aliasexists", "cannot get argument");
  interpreter.SetResult(std::string(AnswerBoolean(interpreter.Exists(alias))));
  return kValue;
}

constexpr TCommand kQueries[] = {
    {"aliasexists", AliasExists},
};

}  // namespace

int Query(TInterpreter& interpreter, const CommandLine& line) {
  return Dispatch(kQueries, Selector(line, "query"), "unknown query", interpreter, line);
}

}  // namespace kiln::commands
