#include "Interpreter/Commands.h"

#include "Interpreter/Checks.h"
#include "Shared/Random.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr const TFamily* kFamilies[] = {
    &commands::kSession, &commands::kCreation,     &commands::kFiles,    &commands::kQuestions,
    &commands::kRows,    &commands::kManipulation, &commands::kTraining, &commands::kRecalls,
    &commands::kRules,   &commands::kPictures,
};

}  // namespace

std::span<const TFamily* const> Families() {
  return kFamilies;
}

const TCommand* FindCommand(std::string_view word) {
  for (const TFamily* const family : kFamilies) {
    if (const TCommand* command = FindNoCase(family->commands, word, &TCommand::word)) {
      return command;
    }
  }
  return nullptr;
}

const TForm& FormByWord(const TCommand& command, const TInterpreter& /*interpreter*/,
                        const TCommandLine& line) {
  if (command.forms.size() == 1) return command.forms.front();
  const TForm* form = FindNoCase(command.forms, Selector(line, command.word), &TForm::word);
  if (!form) Fail(command.unknown);
  return *form;
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
