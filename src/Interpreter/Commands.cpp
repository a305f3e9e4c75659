#include "Interpreter/Commands.h"

#include "Interpreter/Checks.h"
#include "Shared/Random.h"
#include "Shared/Text.h"

namespace kiln {

int Dispatch(std::span<const TCommand> table, std::string_view word, std::string_view unknown,
             TInterpreter& interpreter, const TCommandLine& line) {
  for (const TCommand& command : table) {
    if (EqualNoCase(command.word, word)) return command.handler(interpreter, line);
  }
  Fail(unknown);
}

std::string_view Selector(const TCommandLine& line, std::string_view command) {
  return Optional(line.Word(command), std::string_view());
}

void StartRandom(const TCommandLine& line) {
  if (const std::optional<std::int64_t> seed = line.WholeNumber("seed")) {
    Random::Seed(static_cast<std::uint32_t>(*seed));
  } else {
    Random::SeedFromClock();
  }
}

}  // namespace kiln
