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

// Those that make something return null for a kind that nobody knows.

// A network of empty layers without connections. A kind that has a block of its own behind the
// header reads it here.
std::unique_ptr<TBasicNetwork> MakeNetwork(const NetworkHeader& header, FileTools::Reader& reader);

// Writes that block, where the kind of the network has one.
void WriteOwnBlock(FileTools::Writer& writer, const TBasicNetwork& network);

// A failure unless the layers and connections that were read are those that the kind needs.
void CheckComplete(const TBasicNetwork& network, const FileTools::Reader& reader);

std::unique_ptr<TBasicLayer> MakeLayer(std::string_view kind_name, std::size_t neurons);

std::unique_ptr<TBasicConnections> MakeConnections(std::string_view kind_name);

}  // namespace kiln::NetworkFiler
