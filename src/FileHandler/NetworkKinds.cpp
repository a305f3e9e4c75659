#include "FileHandler/NetworkKinds.h"

#include <utility>

#include "FileHandler/NetworkReading.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/TConnectedConnections.h"
#include "NeuralNets/TConnectedNetwork.h"
#include "NeuralNets/TGainLayer.h"
#include "NeuralNets/TMLPNetwork.h"
#include "NeuralNets/TPrunedConnections.h"
#include "NeuralNets/TSimpleInputLayer.h"
#include "NeuralNets/TSimpleLayer.h"
#include "Shared/TAssertion.h"
#include "Shared/TException.h"
#include "Shared/Text.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarn.h"
#include "Tarn/TTarnOutputLayer.h"
#include "Tarn/TToConditionConnections.h"
#include "Tarn/TToOutputConnections.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::Reader;
using FileTools::Writer;

// --- Networks --------------------------------------------------------------------------------

template <typename TNetwork>
std::unique_ptr<TBasicNetwork> MakeLayered(const NetworkHeader& header, Reader&) {
  return std::make_unique<TNetwork>(header.layers);
}

// The bias layer is not one of the layers that a perceptron is asked for.
std::unique_ptr<TBasicNetwork> MakePerceptron(const NetworkHeader& header, Reader&) {
  return std::make_unique<TMLPNetwork>(header.layers - 1);
}

std::unique_ptr<TBasicNetwork> MakeMap(const NetworkHeader& header, Reader& reader) {
  Assert(header.layers == 3, "numlayers == 3", kModule);
  std::vector<int> sizes = ReadDimensions(reader);
  try {
    return std::make_unique<TKohonenNetwork>(std::move(sizes));
  } catch (const TException& too_large) {
    FailLoad(reader, too_large.Message());
  }
}

void WriteMap(Writer& writer, const TBasicNetwork& network) {
  WriteDimensions(writer, dynamic_cast<const TKohonenNetwork&>(network).Grid().Sizes());
}

bool IsCompleteMap(const TBasicNetwork& network) {
  return dynamic_cast<const TKohonenNetwork&>(network).IsComplete();
}

std::unique_ptr<TBasicNetwork> MakeTarn(const NetworkHeader& header, Reader&) {
  Assert(header.layers == 6, "numlayers == 6", kModule);
  return std::make_unique<TTarn>();
}

bool IsCompleteTarn(const TBasicNetwork& network) {
  return dynamic_cast<const TTarn&>(network).IsComplete();
}

struct NetworkKind {
  std::string_view name;
  std::unique_ptr<TBasicNetwork> (*make)(const NetworkHeader& header, Reader& reader);

  // Writes the block that `make` reads, and tells whether layers and connections are those that the
  // kind needs. Null for kinds without such a block, and for kinds of any shape.
  void (*write)(Writer& writer, const TBasicNetwork& network) = nullptr;
  bool (*is_complete)(const TBasicNetwork& network) = nullptr;
};
constexpr NetworkKind kNetworks[] = {
    {"BASIC", MakeLayered<TBasicNetwork>},
    {"CONNECTED", MakeLayered<TConnectedNetwork>},
    {"MLP", MakePerceptron},
    {"KOHONEN", MakeMap, WriteMap, IsCompleteMap},
    {"TARN", MakeTarn, nullptr, IsCompleteTarn},
};

// --- Layers ----------------------------------------------------------------------------------

template <typename TLayer>
std::unique_ptr<TBasicLayer> MakeSized(std::size_t neurons) {
  return std::make_unique<TLayer>(neurons);
}

struct LayerKind {
  std::string_view name;
  std::unique_ptr<TBasicLayer> (*make)(std::size_t neurons);
};
constexpr LayerKind kLayers[] = {
    {"SIMPLE", MakeSized<TSimpleLayer>},
    {"INPUT", MakeSized<TSimpleInputLayer>},
    {"GAIN", MakeSized<TGainLayer>},
    {"FUZZYCONDITION", MakeSized<TConditionLayer>},
    {"DEFUZZIFY", MakeSized<TTarnOutputLayer>},
};

// --- Connections -----------------------------------------------------------------------------

template <typename TConnections>
std::unique_ptr<TBasicConnections> MakeUnattached() {
  return std::make_unique<TConnections>();
}

struct ConnectionsKind {
  std::string_view name;
  std::unique_ptr<TBasicConnections> (*make)();
};
constexpr ConnectionsKind kConnections[] = {
    {"FullyConnected", MakeUnattached<TConnectedConnections>},
    {"Pruneable", MakeUnattached<TPrunedConnections>},
    {"ToConditionConnections", MakeUnattached<TToConditionConnections>},
    {"ToOutputConnections", MakeUnattached<TToOutputConnections>},
};

}  // namespace

std::unique_ptr<TBasicNetwork> MakeNetwork(const NetworkHeader& header, Reader& reader) {
  const NetworkKind* kind = FindNoCase(kNetworks, header.kind, &NetworkKind::name);
  return kind ? kind->make(header, reader) : nullptr;
}

void WriteOwnBlock(Writer& writer, const TBasicNetwork& network) {
  const NetworkKind* kind = FindNoCase(kNetworks, network.KindName(), &NetworkKind::name);
  if (kind && kind->write) kind->write(writer, network);
}

void CheckComplete(const TBasicNetwork& network, const Reader& reader) {
  const NetworkKind* kind = FindNoCase(kNetworks, network.KindName(), &NetworkKind::name);
  if (!kind || !kind->is_complete || kind->is_complete(network)) return;
  FailLoad(reader, "Layers and connections are not those of a " + std::string(kind->name));
}

std::unique_ptr<TBasicLayer> MakeLayer(std::string_view kind_name, std::size_t neurons) {
  const LayerKind* kind = FindNoCase(kLayers, kind_name, &LayerKind::name);
  return kind ? kind->make(neurons) : nullptr;
}

std::unique_ptr<TBasicConnections> MakeConnections(std::string_view kind_name) {
  const ConnectionsKind* kind = FindNoCase(kConnections, kind_name, &ConnectionsKind::name);
  return kind ? kind->make() : nullptr;
}

}  // namespace kiln::NetworkFiler
