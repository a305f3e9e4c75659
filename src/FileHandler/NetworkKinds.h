#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include "FileHandler/NetworkSections.h"
#include "NeuralNets/TBasicConnections.h"
#include "NeuralNets/TBasicLayer.h"
#include "NeuralNets/TBasicNetwork.h"

// The kinds that a network file can name, in any case: one table each for networks, layers and
// connections. A new kind is a line in its table.
namespace kiln::NetworkFiler {

// The Make functions return null for an unknown kind.

// A network of empty layers without connections. A kind that has a block of its own behind the
// header reads it here.
std::unique_ptr<TBasicNetwork> MakeNetwork(const NetworkHeader& header, FileTools::Reader& reader);

// Writes the block behind the header, for kinds of network that have one.
void WriteOwnBlock(FileTools::Writer& writer, const TBasicNetwork& network);

// Fails, as FailLoad does, unless the network has the layers and connections that its kind needs.
void CheckComplete(const TBasicNetwork& network, const FileTools::Reader& reader);

std::unique_ptr<TBasicLayer> MakeLayer(std::string_view kind_name, std::size_t neurons);

std::unique_ptr<TBasicConnections> MakeConnections(std::string_view kind_name);

}  // namespace kiln::NetworkFiler
