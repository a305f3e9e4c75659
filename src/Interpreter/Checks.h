#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "Interpreter/TCommandLine.h"
#include "Interpreter/TObjectRegistry.h"
#include "Shared/TAssertion.h"

// The checks of which command handlers are made. Each passes its value on or throws TCommandFailure
// with the answer to the user.
namespace kiln {

// A command that cannot be carried out, and why.
class TCommandFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws TCommandFailure with the parts of the message put together.
template <typename... TParts>
[[noreturn]] void Fail(const TParts&... parts) {
  std::string message;
  (message.append(parts), ...);
  throw TCommandFailure(message);
}

// --- Arguments -------------------------------------------------------------------------------

// An argument without which the command cannot go on.
template <typename T>
T Required(TReading<T> reading, std::string_view message) {
  if (reading.code != TReadCode::kRead) Fail(message);
  return std::move(reading.value);
}

// An argument that may be left out. One that is there but cannot be read is TAssertion.
template <typename T>
T Optional(TReading<T> reading, T fallback) {
  if (reading.code == TReadCode::kTagAbsent) return fallback;
  Assert(reading.code == TReadCode::kRead, "IntReturn == SUCCESS");
  return std::move(reading.value);
}

bool RequiredBoolean(const TCommandLine& line, std::string_view tag);

// The file name in parentheses behind "filename".
std::string RequiredPath(const TCommandLine& line, std::string_view message);

// A count that must be at least `minimum`. A count beyond 2^31-1 becomes 2^31-1.
int AtLeast(int minimum, std::int64_t count, std::string_view tag);

// --- Objects ---------------------------------------------------------------------------------

void RefuseReserved(std::string_view alias);

// The alias behind `tag`, not a reserved word.
std::string_view RequiredAlias(const TCommandLine& line, std::string_view tag,
                               std::string_view message);
std::string_view RequiredAlias(const TCommandLine& line, std::string_view tag);

// The alias behind `tag` for an object that is to be made: not reserved, not taken.
std::string_view RequiredNewAlias(const TObjectRegistry& registry, const TCommandLine& line,
                                  std::string_view tag);

// The entry called `alias`, which must exist.
const TRegistryNode& RequiredEntry(const TObjectRegistry& registry, std::string_view alias);

// What a command is about.
struct TSubject {
  std::string_view alias;
  const TRegistryNode& node;
};

// The entry called `alias`, which must not be a reserved word and must exist.
TSubject RequiredSubject(const TObjectRegistry& registry, std::string_view alias);

// The object of an entry, or of the entry called `alias`, which must be a `T`. `what` completes the
// message behind the alias.
template <typename T>
std::shared_ptr<T> RequiredObject(const TRegistryNode& node, std::string_view alias,
                                  std::string_view what) {
  std::shared_ptr<T> object = node.As<T>();
  if (!object) Fail(alias, what);
  return object;
}
template <typename T>
std::shared_ptr<T> RequiredObject(const TObjectRegistry& registry, std::string_view alias,
                                  std::string_view what) {
  return RequiredObject<T>(RequiredEntry(registry, alias), alias, what);
}

// Fails unless `columns`, those of a side ("inputs" or "outputs") of the data set `set`, are as
// many as the network `owner` wants.
void RequireColumns(std::string_view set, int columns, std::string_view side,
                    std::string_view owner, std::size_t wanted);

}  // namespace kiln
