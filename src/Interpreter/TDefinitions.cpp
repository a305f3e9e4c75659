#include "Interpreter/TDefinitions.h"

#include <algorithm>

#include "Interpreter/Checks.h"

namespace kiln {

namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsPartOfName(char c) {
  return c == '_' || IsDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// The name at the start of `text`; empty when there is none.
std::string_view NameAt(std::string_view text) {
  if (text.empty() || IsDigit(text.front())) return {};
  const auto end = std::ranges::find_if_not(text, IsPartOfName);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

}  // namespace

bool TDefinitions::Add(std::string_view definition) {
  const std::string_view name = NameAt(definition);
  if (name.empty() || !definition.substr(name.size()).starts_with('=')) return false;
  values_.insert_or_assign(std::string(name), std::string(definition.substr(name.size() + 1)));
  return true;
}

std::string_view TDefinitions::Expanded(std::string_view line, std::string& room) const {
  if (values_.empty() || line.find('$') == line.npos) return line;
  room.clear();
  for (std::size_t dollar = line.find('$'); dollar != line.npos; dollar = line.find('$')) {
    const std::string_view name = NameAt(line.substr(dollar + 1));
    room.append(line.substr(0, dollar));
    line.remove_prefix(dollar + 1 + name.size());
    if (name.empty()) {
      room += '$';
      continue;
    }
    const auto found = values_.find(name);
    if (found == values_.end()) Fail("$", name, " is not defined");
    room += found->second;
  }
  return room.append(line);
}

}  // namespace kiln
