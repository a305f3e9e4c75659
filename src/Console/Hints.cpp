#include "Console/Hints.h"

#include <span>
#include <vector>

#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/LineCheck.h"
#include "Interpreter/TCommand.h"
#include "Interpreter/TCommandLine.h"
#include "RuleObject/TFuzzyRuleSet.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

std::string DidYouMean(std::string_view typed, std::span<const std::string_view> words) {
  const std::string_view nearest = NearestWord(typed, words);
  if (nearest.empty() || nearest == typed) return {};
  return std::string("did you mean ").append(nearest).append("?");
}

std::string OtherCommand(std::string_view typed) {
  std::vector<std::string_view> words = {"quit", "exit"};
  for (const TFamily* family : Families()) {
    for (const TCommand& command : family->commands) words.push_back(command.word);
  }
  return DidYouMean(typed, words);
}

std::string OtherForm(const TCommand& command, std::string_view arguments) {
  std::vector<std::string_view> words;
  for (const TForm& form : command.forms) words.push_back(form.word);
  return DidYouMean(TCommandLine(arguments).CommandWord(), words);
}

// For a line that means no form of its command. Words in front of forms count in one case only.
std::string OtherWords(const TCommand& command, const TCommandLine& line) {
  const bool has_words = !command.forms.front().word.empty();
  std::string hint;
  if (has_words) hint = DidYouMean(line.CommandWord(), {{command.word}});
  return hint.empty() ? OtherForm(command, line.Arguments()) : hint;
}

// For what follows "help".
std::string OtherTopic(const TCommandLine& topic) {
  const std::string_view word = topic.CommandWord();
  if (word.empty()) return {};
  if (const TCommand* command = FindCommand(word)) {
    const std::string_view selector = TCommandLine(topic.Arguments()).CommandWord();
    const bool is_right = FindNoCase(command->forms, selector, &TForm::word) != nullptr;
    return is_right ? std::string() : OtherForm(*command, topic.Arguments());
  }
  for (const TFamily* family : Families()) {
    for (const TCommand& command : family->commands) {
      const TForm* const form = FindNoCase(command.forms, word, &TForm::word);
      if (!form) continue;
      return std::string("did you mean help ").append(command.word).append(" ").append(form->word) +
             "?";
    }
  }
  return OtherCommand(word);
}

// For an alias of which there is no object.
std::string OtherAlias(const TInterpreter& interpreter, const TForm& form,
                       const TCommandLine& line) {
  std::vector<std::string_view> aliases;
  for (const TRegistryNode& node : interpreter) aliases.push_back(node.Alias());
  for (const TTag& tag : form.tags) {
    if (tag.kind != TValueKind::kAlias) continue;
    const TReading<std::string_view> alias = line.Word(tag.name);
    if (alias.code != TReadCode::kRead || interpreter.Exists(alias.value)) continue;
    if (std::string hint = DidYouMean(alias.value, aliases); !hint.empty()) return hint;
  }
  return {};
}

}  // namespace

std::string HintOn(const TInterpreter& interpreter, std::string_view text) {
  const TCommandLine line(text);
  const TCommand* const command = FindCommand(line.CommandWord());
  if (!command) return OtherCommand(line.CommandWord());
  if (command->word == "help") return OtherTopic(TCommandLine(line.Arguments()));
  const TForm* form = nullptr;
  try {
    form = &command->choose(*command, interpreter, line);
  } catch (const TCommandFailure&) {
    std::string hint = OtherWords(*command, line);
    if (hint.empty()) hint = OtherAlias(interpreter, command->forms.front(), line);
    return hint;
  }
  if (const auto oddity = FindOddity(*command, *form, text)) {
    return oddity->effect.empty() ? oddity->fault : oddity->effect;
  }
  return OtherAlias(interpreter, *form, line);
}

std::string HintBehind(const TInterpreter& interpreter, std::string_view text) {
  const TCommandLine line(text);
  if (!EqualNoCase(line.CommandWord(), "retarn")) return {};
  return commands::RemarkOnRules(interpreter, line);
}

}  // namespace kiln
