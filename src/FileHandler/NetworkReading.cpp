#include "FileHandler/NetworkReading.h"

#include <cstdint>
#include <memory>
#include <utility>

#include "KQmessage/TKQstructure.h"
#include "Shared/TException.h"

namespace kiln::NetworkFiler {

using FileTools::ParseItem;
using FileTools::Reader;

void FailLoad(const Reader& reader, const std::string& message) {
  auto detail = std::make_shared<TKQstructure>(TKQstructure::MakeError("bad-format"));
  detail->SetString("file", reader.FileName());
  detail->SetLong("line", static_cast<std::int64_t>(reader.Line()));
  throw TException(message, kLoadCategory, kLoadFunction, std::move(detail));
}

void CheckClosed(const ParseItem& statement, const Reader& reader) {
  if (statement.unbracketed) FailLoad(reader, "Too complicated statement");
}

std::size_t ReadCount(const ParseItem& statement, const Reader& reader, std::size_t max) {
  return ReadIndex(statement, reader, max + 1);
}

std::size_t ReadIndex(const ParseItem& statement, const Reader& reader, std::size_t end) {
  const std::int64_t value = FileTools::ParseInteger(statement.value, reader);
  if (value < 0 || static_cast<std::uint64_t>(value) >= end) {
    std::string message(statement.name);
    FailLoad(reader, message.append(" = ").append(statement.value).append(" is out of range"));
  }
  return static_cast<std::size_t>(value);
}

}  // namespace kiln::NetworkFiler
