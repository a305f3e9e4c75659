#include "FileHandler/NetworkFile.h"

#include <memory>
#include <utility>

#include "FileHandler/NetworkKinds.h"
#include "FileHandler/NetworkReading.h"
#include "FileHandler/NetworkSections.h"
#include "FileHandler/Syntax/ParseTools.h"
#include "KQmessage/TKQstructure.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

Reader Open(const std::string& path) {
  try {
    return Reader::FromFile(path);
  } catch (const FileTools::OpenError&) {
    auto detail = std::make_shared<TKQstructure>(TKQstructure::MakeError("file-open"));
    detail->SetString("file", path);
    throw TException("Error on file open", kLoadCategory, kLoadFunction, std::move(detail));
  }
}

std::unique_ptr<TBasicNetwork> ReadNetwork(Reader& reader) {
  const NetworkHeader header = ReadHeader(reader);
  std::unique_ptr<TBasicNetwork> network = MakeNetwork(header, reader);
  if (!network) FailLoad(reader, "Unknown network type");
  // Checked behind MakeNetwork, which refuses a wrong number of layers with a message of its own.
  Assert(header.output_layer < network->NumLayers(), "outlayer < numlayers", kModule);
  network->SetInputAndOutputLayer(header.input_layer, header.output_layer);

  ParseItem next = ReadLayers(reader, header, *network);
  next = ReadConnections(reader, next, *network);
  ExpectEndTag(next, reader);
  CheckComplete(*network, reader);
  return network;
}

}  // namespace

std::unique_ptr<TBasicNetwork> LoadNetwork(const std::string& path) {
  Reader reader = Open(path);
  return FileTools::ReadPlaced(reader, ReadNetwork);
}

}  // namespace kiln::NetworkFiler
