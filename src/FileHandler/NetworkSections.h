#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "FileHandler/Syntax/ParseTools.h"

namespace kiln {
class TBasicNetwork;
}
namespace kiln::FileTools {
class Writer;
}

// The sections of a network file, each with its reader, in the order of the file.
namespace kiln::NetworkFiler {

// What a file says about the network as a whole.
struct NetworkHeader {
  std::string_view kind;  // a view into the reader's text
  int layers = 0;
  std::size_t input_layer = 1;
  std::size_t output_layer = 0;         // may be beyond the last layer
  std::optional<std::int64_t> inputs;   // if given, the input layer must have as many neurons
  std::optional<std::int64_t> outputs;  // if given, the output layer must
};

// Reads the kind of the network and the block of information.
NetworkHeader ReadHeader(FileTools::Reader& reader);

// The sizes of a map, one a dimension.
std::vector<int> ReadDimensions(FileTools::Reader& reader);
void WriteDimensions(FileTools::Writer& writer, std::span<const int> sizes);

// Read all layers, or all blocks of connections, into a network that has none yet. Return the first
// item behind them.
FileTools::ParseItem ReadLayers(FileTools::Reader& reader, const NetworkHeader& header,
                                TBasicNetwork& network);
FileTools::ParseItem ReadConnections(FileTools::Reader& reader, FileTools::ParseItem next,
                                     TBasicNetwork& network);

}  // namespace kiln::NetworkFiler
