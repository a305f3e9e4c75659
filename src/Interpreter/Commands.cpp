#include "Interpreter/Commands.h"

#include "Interpreter/Checks.h"
#include "Shared/Random.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr TCommand kCommands[] = {
    {"create", commands::Create},
    {"save", commands::Save},
    {"load", commands::Load},
    {"recall", commands::Recall},
    {"map", commands::Map},
    {"label", commands::Label},
    {"purge", commands::Purge},
    {"train", commands::Train},
    {"gettrained", commands::GetTrained},
    {"destroy", commands::Destroy},
    {"copy", commands::Copy},
    {"log", commands::Log},
    {"run", commands::Run},
    {"query", commands::Query},
    {"append", commands::Append},
    {"resetdata", commands::ResetData},
    {"purgedata", commands::PurgeData},
    {"shuffle", commands::Shuffle},
    {"normalise", commands::Normalise},
    {"denormalise", commands::Denormalise},
    {"labeltarn", commands::LabelTarn},
    {"retarn", commands::RETarn},
    {"ritarn", commands::RITarn},
};

}  // namespace

std::span<const TCommand> Commands() {
  return kCommands;
}

TAnswer Dispatch(std::span<const TCommand> table, std::string_view word, std::string_view unknown,
                 TInterpreter& interpreter, const TCommandLine& line) {
  const TCommand* command = FindNoCase(table, word, &TCommand::word);
  if (!command) Fail(unknown);
  return command->handler(interpreter, line);
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
