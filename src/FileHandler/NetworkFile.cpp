#include "FileHandler/NetworkFile.h"

#include <memory>
#include <utility>

#include "FileHandler/NetworkKinds.h"
#include "FileHandler/NetworkSections.h"
#include "FileHandler/ParseTools.h"
#include "KQmessage/TKQstructure.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

constexpr char kCategory[] = "Bad Format";
constexpr char kFunction[] = "NetworkFiler::LoadNetwork";

Reader Open(const std::string& path) {
  try {
    return Reader::FromFile(path);
  } catch (const FileTools::OpenError&) {
    auto detail = std::make_shared<TKQstructure>(TKQstructure::MakeError("file-open"));
    detail->SetString("file", path);
    throw TException("Error on file open", kCategory, kFunction, std::move(detail));
  }
}

}  // namespace

void FailLoad(const Reader& reader, const std::string& message) {
  auto detail = std::make_shared<TKQstructure>(TKQstructure::MakeError("bad-format"));
  detail->SetString("file", reader.FileName());
  detail->SetLong("line", static_cast<std::int64_t>(reader.Line()));
  throw TException(message, kCategory, kFunction, std::move(detail));
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

std::unique_ptr<TBasicNetwork> LoadNetwork(const std::string& path) {
  Reader reader = Open(path);
  const NetworkHeader header = ReadHeader(reader);
  std::unique_ptr<TBasicNetwork> network = MakeNetwork(header, reader);
  if (!network) FailLoad(reader, "Unknown network type");
  // Only now: a kind of network that has a fixed number of layers says so first.
  Assert(header.output_layer < network->NumLayers(), "outlayer < numlayers", kModule);
  network->SetInputAndOutputLayer(header.input_layer, header.output_layer);

  ParseItem next = ReadLayers(reader, header, *network);
  next = ReadConnections(reader, next, *network);
  ExpectEndTag(next, reader);
  CheckComplete(*network, reader);
  return network;
}

}  // namespace kiln::NetworkFiler
