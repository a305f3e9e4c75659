#include "Console/Completion.h"

#include <algorithm>
#include <filesystem>
#include <span>

#include "Console/Screen.h"
#include "Interpreter/Checks.h"
#include "Interpreter/TCommand.h"
#include "Interpreter/TCommandLine.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

// The words of a line: complete ones, each with a blank behind it, and the one that is being typed.
struct TTyped {
  std::vector<std::string_view> words;
  std::string_view last;
};

TTyped Split(std::string_view line) {
  TTyped typed;
  for (std::size_t at = 0;;) {
    at = std::min(line.find_first_not_of(' ', at), line.size());
    const std::size_t end = line.find(' ', at);
    if (end == line.npos) {
      typed.last = line.substr(at);
      return typed;
    }
    typed.words.push_back(line.substr(at, end - at));
    at = end;
  }
}

// Collects what begins like a word: exactly so or, where there is no such thing, in any case.
class TChoices {
 public:
  TChoices(std::string_view line, std::string_view word) : word_(word) {
    completion_.begin = line.size() - word.size();
  }

  void Add(std::string_view candidate, std::string_view behind = " ") {
    if (!EqualNoCase(candidate.substr(0, word_.size()), word_)) return;
    completion_.words.push_back(std::string(candidate).append(behind));
  }

  void AddAll(std::string_view words) {
    const TTyped all = Split(words);
    for (const std::string_view word : all.words) Add(word);
    if (!all.last.empty()) Add(all.last);
  }

  TCompletion Take() {
    const auto differs = [this](const std::string& word) { return !word.starts_with(word_); };
    if (!std::ranges::all_of(completion_.words, differs)) {
      std::erase_if(completion_.words, differs);
    }
    std::vector<std::string>& words = completion_.words;
    std::ranges::sort(words);
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return std::move(completion_);
  }

 private:
  std::string_view word_;
  TCompletion completion_;
};

void AddAliases(TChoices& choices, const TInterpreter& interpreter, const TTag& tag,
                std::string_view behind = " ") {
  for (const TRegistryNode& node : interpreter) {
    if (tag.words.empty() || HasWord(tag.words, node.Kind())) choices.Add(node.Alias(), behind);
  }
}

void AddValues(TChoices& choices, const TInterpreter& interpreter, const TTag& tag) {
  switch (tag.kind) {
    case TValueKind::kAlias:
      AddAliases(choices, interpreter, tag);
      break;
    case TValueKind::kChoice:
      choices.AddAll(tag.words);
      break;
    case TValueKind::kBoolean:
      choices.AddAll("off on");
      break;
    case TValueKind::kPath:
      choices.Add("(", "");
      break;
    default:
      if (IsList(tag.kind)) choices.Add("{", "");
      break;
  }
}

// The forms that the words so far may mean.
std::vector<const TForm*> FormsOf(const TCommand& command, const TInterpreter& interpreter,
                                  std::string_view line) {
  try {
    return {&command.choose(command, interpreter, TCommandLine(line))};
  } catch (const TCommandFailure&) {
    std::vector<const TForm*> forms;
    for (const TForm& form : command.forms) forms.push_back(&form);
    return forms;
  }
}

bool HasFormWords(const TCommand& command) {
  return !command.forms.front().word.empty();
}

void AddFormWords(TChoices& choices, const TCommand& command) {
  for (const TForm& form : command.forms) choices.AddAll(form.word);
}

void AddCommandWords(TChoices& choices) {
  for (const TFamily* family : Families()) {
    for (const TCommand& command : family->commands) choices.Add(command.word);
  }
  choices.AddAll("exit quit");
}

// What may come behind the words of a form: the value of the tag before, or another tag.
void AddBehind(TChoices& choices, const TInterpreter& interpreter, const TCommand& command,
               const TForm& form, const std::vector<std::string_view>& words) {
  const TTag* const positional = form.Positional(command.word);
  const std::size_t selectors = form.word.empty() ? 1 : 2;
  if (positional && words.size() == selectors) {
    AddValues(choices, interpreter, *positional);
    return;
  }
  const TTag* const before = FindTag(form.tags, words.back());
  if (before && before != positional && words.size() > selectors) {
    AddValues(choices, interpreter, *before);
    return;
  }
  for (const TTag& tag : form.tags) {
    if (&tag != positional && std::ranges::find(words, tag.name) == words.end()) {
      choices.Add(tag.name);
    }
  }
}

// What may follow "help": a command, and what selects one of its forms.
void AddTopics(TChoices& choices, const std::vector<std::string_view>& words) {
  if (words.size() == 1) return AddCommandWords(choices);
  const TCommand* const command = FindCommand(words[1]);
  if (!command || words.size() > 2) return;
  AddFormWords(choices, *command);
  for (const TForm& form : command->forms) choices.AddAll(form.kinds);
}

TCompletion CompleteWord(const TInterpreter& interpreter, std::string_view line) {
  const TTyped typed = Split(line);
  TChoices choices(line, typed.last);
  if (typed.words.empty()) {
    AddCommandWords(choices);
    return choices.Take();
  }
  const TCommand* const command = FindCommand(typed.words.front());
  if (!command) return choices.Take();
  if (command->word == "help") {
    AddTopics(choices, typed.words);
  } else if (typed.words.size() == 1 && HasFormWords(*command)) {
    AddFormWords(choices, *command);
  } else {
    for (const TForm* form : FormsOf(*command, interpreter, line)) {
      AddBehind(choices, interpreter, *command, *form, typed.words);
    }
  }
  return choices.Take();
}

// Whether a name in brackets reaches the command as it is.
bool CanBeTyped(std::string_view file) {
  return file.find(')') == file.npos && Screen::Fitting(file, file.npos).size() == file.size();
}

// `name` is what stands between the bracket and the end of the line.
TCompletion CompleteFile(std::string_view line, std::string_view name) {
  name.remove_prefix(std::min(name.find_first_not_of(' '), name.size()));
  const std::size_t slash = name.rfind('/');
  const std::string folder(slash == name.npos ? "" : name.substr(0, slash + 1));
  TChoices choices(line, name);
  std::error_code no_folder;
  for (std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, no_folder), end;
       entry != end && !no_folder; entry.increment(no_folder)) {
    const std::string file = entry->path().filename().string();
    if (file.starts_with('.') && !name.substr(folder.size()).starts_with('.')) continue;
    if (!CanBeTyped(file)) continue;
    std::error_code not_there;
    choices.Add(folder + file, entry->is_directory(not_there) ? "/" : ")");
  }
  return choices.Take();
}

// Completes an alias in a list of them.
TCompletion CompleteElement(const TInterpreter& interpreter, std::string_view line,
                            std::size_t brace) {
  std::string_view element = line.substr(line.find_last_of("{,") + 1);
  element.remove_prefix(std::min(element.find_first_not_of(' '), element.size()));
  TChoices choices(line, element);
  const TTyped typed = Split(line.substr(0, brace));
  if (typed.words.size() < 2) return choices.Take();
  const TCommand* const command = FindCommand(typed.words.front());
  if (!command) return choices.Take();
  for (const TForm* form : FormsOf(*command, interpreter, line)) {
    const TTag* const tag = FindTag(form->tags, typed.words.back());
    if (tag && tag->kind == TValueKind::kAliases) AddAliases(choices, interpreter, *tag, "");
  }
  return choices.Take();
}

}  // namespace

TCompletion Complete(const TInterpreter& interpreter, std::string_view line) {
  const std::size_t open = line.find_last_of("({");
  if (open == line.npos || line.find_first_of(")}", open) != line.npos) {
    return CompleteWord(interpreter, line);
  }
  return line[open] == '(' ? CompleteFile(line, line.substr(open + 1))
                           : CompleteElement(interpreter, line, open);
}

}  // namespace kiln
