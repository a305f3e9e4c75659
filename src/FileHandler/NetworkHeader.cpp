#include "FileHandler/NetworkReading.h"
#include "FileHandler/NetworkSections.h"
#include "NeuralNets/TBasicNetwork.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::ParseItem;
using FileTools::Reader;

// The statements of the block, which may come in any order. If one is repeated, its last value
// counts.
struct Information {
  std::optional<std::int64_t> layers;
  std::optional<std::int64_t> input_layer;
  std::optional<std::int64_t> output_layer;
  std::optional<std::int64_t> inputs;
  std::optional<std::int64_t> outputs;
  std::optional<std::int64_t> bias_layer;  // not used: a bias layer is known by its function
};

struct Keyword {
  std::string_view name;
  std::optional<std::int64_t> Information::*value;
};
constexpr Keyword kKeywords[] = {
    {"NumberOfLayers", &Information::layers},    {"InputLayer", &Information::input_layer},
    {"OutputLayer", &Information::output_layer}, {"NumberOfInputs", &Information::inputs},
    {"NumberOfOutputs", &Information::outputs},  {"BiasLayer", &Information::bias_layer},
};

Information ReadInformation(Reader& reader) {
  constexpr std::string_view kBlock = "NetworkInformation";
  ExpectStartTag(reader.ReadItem("NeuralNetwork"), reader, kBlock);
  Information information;
  ParseItem item = reader.ReadItem(kBlock);
  for (; item.kind == ParseItem::kStatement; item = reader.ReadItem(kBlock)) {
    CheckClosed(item, reader);
    const Keyword* keyword = FindNoCase(kKeywords, item.name, &Keyword::name);
    if (!keyword) FailLoad(reader, "Unknown keyword");
    information.*keyword->value = FileTools::ParseInteger(item.value, reader);
  }
  ExpectEndTag(item, reader);
  return information;
}

}  // namespace

NetworkHeader ReadHeader(Reader& reader) {
  ExpectStartTag(reader.ReadItem(""), reader, "NeuralNetwork");
  NetworkHeader header;
  header.kind = ExpectString(reader.ReadItem("NeuralNetwork"), reader, "NetworkType");

  const Information information = ReadInformation(reader);
  if (!information.layers) FailLoad(reader, "Must specify number of layers");
  const std::int64_t layers = *information.layers;
  const std::int64_t input_layer = information.input_layer.value_or(1);
  Assert(input_layer < layers, "inlayer < numlayers", kModule);
  Assert(input_layer >= 0, "inlayer >= 0", kModule);
  const std::int64_t output_layer = information.output_layer.value_or(layers - 1);
  Assert(output_layer >= 0, "outlayer >= 0", kModule);
  if (layers > static_cast<std::int64_t>(TBasicNetwork::kMaxLayers)) {
    FailLoad(reader, "NumberOfLayers = " + std::to_string(layers) + " is out of range");
  }

  header.layers = static_cast<int>(layers);
  header.input_layer = static_cast<std::size_t>(input_layer);
  header.output_layer = static_cast<std::size_t>(output_layer);
  header.inputs = information.inputs;
  header.outputs = information.outputs;
  return header;
}

}  // namespace kiln::NetworkFiler
