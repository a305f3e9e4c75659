#include "Interpreter/Usage.h"

#include <algorithm>
#include <vector>

namespace kiln {

namespace {

constexpr std::size_t kWidth = 78;
const std::string kIndent = "  ";
constexpr std::size_t kFewForms = 3;

// The parts, joined by blanks and broken between two of them into lines of at most kWidth
// characters, of which the second and all others begin with `indent`.
std::string Wrapped(std::span<const std::string> parts, std::string_view indent) {
  std::string lines;
  std::size_t width = 0;
  for (const std::string& part : parts) {
    if (width > 0 && width + 1 + part.size() > kWidth) {
      lines.append("\n").append(indent);
      width = indent.size();
    } else if (width > 0) {
      lines += ' ';
      ++width;
    }
    lines += part;
    width += part.size();
  }
  return lines;
}

std::vector<std::string> Words(std::string_view text) {
  std::vector<std::string> words;
  for (;;) {
    const std::size_t blank = text.find(' ');
    words.emplace_back(text.substr(0, blank));
    if (blank == text.npos) return words;
    text.remove_prefix(blank + 1);
  }
}

std::string Alternatives(std::string_view words) {
  std::string text(words);
  std::ranges::replace(text, ' ', '|');
  return text;
}

std::string Value(const TTag& tag) {
  switch (tag.kind) {
    case TValueKind::kNewAlias:
    case TValueKind::kAlias:
      return "NAME";
    case TValueKind::kAliases:
      return "{NAME, ...}";
    case TValueKind::kWord:
      return "WORD";
    case TValueKind::kChoice:
      return Alternatives(tag.words);
    case TValueKind::kBoolean:
      return "on|off";
    case TValueKind::kLong:
    case TValueKind::kSeed:
      return "N";
    case TValueKind::kDouble:
    case TValueKind::kAnyCaseDouble:
      return "X";
    case TValueKind::kWords:
      return "{WORD, ...}";
    case TValueKind::kLongs:
      return "{N, ...}";
    case TValueKind::kDoubles:
      return "{X, ...}";
    case TValueKind::kPath:
      return "(FILE)";
    case TValueKind::kPhrase:
      return "...";
  }
  return {};
}

// What the tag is called among the meanings of all: itself or, where it is not typed, its value.
std::string Term(const TTag& tag, const TTag* positional) {
  return &tag == positional ? Value(tag) : std::string(tag.name);
}

std::string Meaning(const TTag& tag) {
  std::string text(tag.help);
  if (!tag.IsRequired()) text.append(" (default: ").append(tag.without).append(")");
  return text;
}

// A line for each tag, the meanings below each other.
std::string TagLines(const TCommand& command, const TForm& form) {
  const TTag* const positional = form.Positional(command.word);
  std::size_t widest = 0;
  for (const TTag& tag : form.tags) widest = std::max(widest, Term(tag, positional).size());
  const std::string indent(kIndent.size() + widest + kIndent.size(), ' ');
  std::string lines;
  for (const TTag& tag : form.tags) {
    std::vector<std::string> parts = Words(Meaning(tag));
    std::string start = kIndent + Term(tag, positional);
    start.resize(indent.size(), ' ');
    parts.front().insert(0, start);
    lines.append("\n").append(Wrapped(parts, indent));
  }
  return lines;
}

// The parts of a usage that a line does not break.
std::vector<std::string> UsageParts(const TCommand& command, const TForm& form) {
  std::vector<std::string> parts = {std::string(command.word)};
  if (!form.word.empty()) parts.emplace_back(form.word);
  const TTag* const positional = form.Positional(command.word);
  for (const TTag& tag : form.tags) {
    std::string part = Value(tag);
    if (&tag != positional) part.insert(0, 1, ' ').insert(0, tag.name);
    parts.push_back(tag.IsRequired() ? part : "[" + part + "]");
  }
  return parts;
}

// On a line of its own where it is long.
std::string Example(const TForm& form) {
  const std::string start = "for example:";
  const bool is_long = start.size() + 1 + form.example.size() > kWidth;
  return start + (is_long ? "\n    " : " ") + std::string(form.example);
}

std::string Heading(const TForm& form) {
  if (form.kinds.empty()) return std::string(form.help);
  return std::string(form.help).append(" (").append(form.kinds).append(")");
}

}  // namespace

std::string Describe(const TCommand& command, const TForm& form) {
  return Heading(form)
      .append("\n")
      .append(Wrapped(UsageParts(command, form), "    "))
      .append(TagLines(command, form))
      .append("\n")
      .append(Example(form));
}

std::string Describe(const TCommand& command) {
  if (command.forms.size() == 1) return Describe(command, command.forms.front());
  std::string text = std::string(command.word).append(": ").append(command.help);
  if (command.forms.size() <= kFewForms || command.forms.front().word.empty()) {
    for (const TForm& form : command.forms) text.append("\n\n").append(Describe(command, form));
    return text;
  }
  std::size_t widest = 0;
  for (const TForm& form : command.forms) widest = std::max(widest, form.word.size());
  for (const TForm& form : command.forms) {
    std::string start = kIndent + std::string(command.word).append(" ").append(form.word);
    start.resize(kIndent.size() + command.word.size() + 1 + widest + kIndent.size(), ' ');
    text.append("\n").append(start).append(form.help);
  }
  return text.append("\nhelp ")
      .append(command.word)
      .append(" ")
      .append(command.forms.front().word)
      .append(" tells how that is typed, and so on");
}

std::string Overview() {
  std::string text = "help COMMAND tells how a command is typed: help train";
  std::size_t widest = 0;
  for (const TFamily* family : Families()) widest = std::max(widest, family->title.size());
  for (const TFamily* family : Families()) {
    std::string title = kIndent + std::string(family->title).append(":");
    title.resize(kIndent.size() + widest + 1, ' ');
    std::vector<std::string> parts = {title};
    for (const TCommand& command : family->commands) parts.emplace_back(command.word);
    text.append("\n").append(Wrapped(parts, std::string(title.size() + 1, ' ')));
  }
  return text.append("\n").append(kAtThePrompt);
}

}  // namespace kiln
