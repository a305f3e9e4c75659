#include "Interpreter/Checks.h"

#include "Shared/Narrowing.h"
#include "Shared/Text.h"

namespace kiln {

bool RequiredBoolean(const TCommandLine& line, std::string_view tag) {
  const TReading<bool> reading = line.Boolean(tag);
  if (reading.code == TReadCode::kTagAbsent) Fail("tag ", tag, " not found");
  if (reading.code == TReadCode::kNotABoolean) Fail("bad argument to tag ", tag);
  return reading.value;
}

std::string RequiredPath(const TCommandLine& line, std::string_view message) {
  return std::string(TrimBlanks(Required(line.Parenthesised("filename"), message)));
}

int AtLeast(int minimum, std::int64_t count, std::string_view tag) {
  if (count < minimum) Fail(tag, " must be at least ", std::to_string(minimum));
  return ToInt32(count);
}

void RefuseReserved(std::string_view alias) {
  if (TObjectRegistry::IsReserved(alias)) Fail(alias, " is a reserved word");
}

std::string_view RequiredAlias(const TCommandLine& line, std::string_view tag,
                               std::string_view message) {
  const std::string_view alias = Required(line.Word(tag), message);
  RefuseReserved(alias);
  return alias;
}

std::string_view RequiredAlias(const TCommandLine& line, std::string_view tag) {
  return RequiredAlias(line, tag, "tag " + std::string(tag) + " not found");
}

std::string_view RequiredNewAlias(const TObjectRegistry& registry, const TCommandLine& line,
                                  std::string_view tag) {
  const std::string_view alias = RequiredAlias(line, tag);
  if (registry.Exists(alias)) Fail(alias, " already exists");
  return alias;
}

const TRegistryNode& RequiredEntry(const TObjectRegistry& registry, std::string_view alias) {
  const TRegistryNode* node = registry.Find(alias);
  if (!node) Fail(alias, " does not exist");
  return *node;
}

TSubject RequiredSubject(const TObjectRegistry& registry, std::string_view alias) {
  RefuseReserved(alias);
  return {alias, RequiredEntry(registry, alias)};
}

void RequireColumns(std::string_view set, int columns, std::string_view side,
                    std::string_view owner, std::size_t wanted) {
  if (static_cast<std::size_t>(columns) == wanted) return;
  Fail(set, " has ", std::to_string(columns), " ", side, " but ", owner, " has ",
       std::to_string(wanted));
}

}  // namespace kiln
