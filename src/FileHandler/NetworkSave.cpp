#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "FileHandler/NetworkFile.h"
#include "FileHandler/NetworkKinds.h"
#include "FileHandler/NetworkReading.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "FileHandler/Syntax/Writer.h"
#include "FileHandler/TarnSections.h"
#include "NeuralNets/ActFunctions.h"
#include "NeuralNets/TIterateObjFlags.h"
#include "NeuralNets/TIterateObjWeights.h"
#include "Shared/NumberFormat.h"
#include "Shared/TException.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::Writer;

constexpr int kDecimals = 15;  // of parameters and list weights
constexpr int kDigits = 15;    // of matrix weights
constexpr std::size_t kWeightWidth = 20;
constexpr double kSparse = 0.35;  // below this share of connections a list is the shorter text

std::string Capitals(std::string_view text) {
  std::string capitals(text);
  std::ranges::transform(capitals, capitals.begin(),
                         [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return capitals;
}

std::int64_t ToInteger(std::size_t number) {
  return static_cast<std::int64_t>(number);
}

void WriteRightAligned(Writer& writer, const std::string& text, std::size_t width) {
  writer.WriteText(std::string(width - std::min(width, text.size()), ' '));
  writer.WriteText(text);
}

// --- Header ----------------------------------------------------------------------------------

void CheckBiasLayers(const TBasicNetwork& network) {
  for (std::size_t i = 0; i < network.NumLayers(); ++i) {
    const TBasicLayer& layer = network.Layer(i);
    if (layer.IsBias() && layer.NumNeurons() > 1) {
      throw TException("Illegal number of bias nodes", "Bad Format", "NetworkFiler::SaveNetwork");
    }
  }
}

void WriteHeader(Writer& writer, const TBasicNetwork& network) {
  writer.WriteString("NetworkType", Capitals(network.KindName()));
  writer.WriteNewline();
  writer.WriteStartTag("NetworkInformation");
  const std::size_t input_layer = network.InputLayer();
  const std::size_t output_layer = network.OutputLayer();
  writer.WriteInteger("NumberOfLayers", ToInteger(network.NumLayers()));
  writer.WriteInteger("InputLayer", ToInteger(input_layer));
  writer.WriteInteger("OutputLayer", ToInteger(output_layer));
  writer.WriteInteger("NumberOfInputs", ToInteger(network.Layer(input_layer).NumNeurons()));
  writer.WriteInteger("NumberOfOutputs", ToInteger(network.Layer(output_layer).NumNeurons()));
  for (std::size_t i = 0; i < network.NumLayers(); ++i) {
    if (network.Layer(i).IsBias()) writer.WriteInteger("BiasLayer", ToInteger(i));
  }
  writer.WriteEndTag("NetworkInformation");
}

// --- Layers ----------------------------------------------------------------------------------

// Whether all neurons have the value of the first one.
bool IsCommon(const TBasicLayer& layer, std::size_t parameter) {
  const double value = layer.Neuron(0).GetParameter(parameter);
  for (std::size_t i = 1; i < layer.NumNeurons(); ++i) {
    if (layer.Neuron(i).GetParameter(parameter) != value) return false;
  }
  return true;
}

void WriteFunction(Writer& writer, TActFunction function) {
  writer.WriteString("ActivationFunction", TFnRegistry::Instance().Lookup(function));
}

void WriteParameter(Writer& writer, const TBasicNeuron& neuron, std::size_t parameter) {
  writer.WriteNumber(neuron.ParameterName(parameter), neuron.GetParameter(parameter), kDecimals);
}

// The lines for single neurons: the function where the layer has none in common, and the parameters
// that differ from neuron to neuron.
void WriteNeurons(Writer& writer, const TBasicLayer& layer,
                  const std::vector<std::size_t>& parameters) {
  const bool with_function = layer.GetActivation() == nullptr;
  writer.WriteStartTag("Neurons");
  for (std::size_t i = 0; i < layer.NumNeurons(); ++i) {
    const TBasicNeuron& neuron = layer.Neuron(i);
    writer.OpenBracket();
    writer.WriteInteger("Neuron", ToInteger(i));
    if (with_function) WriteFunction(writer, neuron.GetActivation());
    for (const std::size_t parameter : parameters) WriteParameter(writer, neuron, parameter);
    writer.CloseBracket();
  }
  writer.WriteEndTag("Neurons");
}

// Writes a line "[All name=value ]" for each common parameter. Returns the parameters that differ
// from neuron to neuron.
std::vector<std::size_t> WriteCommonParameters(Writer& writer, const TBasicLayer& layer) {
  std::vector<std::size_t> own;
  if (layer.NumNeurons() == 0) return own;
  const TBasicNeuron& first = layer.Neuron(0);
  for (std::size_t parameter = 0; parameter < first.NumParameters(); ++parameter) {
    if (!IsCommon(layer, parameter)) {
      own.push_back(parameter);
      continue;
    }
    writer.OpenBracket();
    writer.WriteToken("All");
    WriteParameter(writer, first, parameter);
    writer.CloseBracket();
  }
  return own;
}

void WriteLayer(Writer& writer, const TBasicLayer& layer) {
  writer.WriteNewline();
  writer.WriteInteger("Layer", ToInteger(layer.Index()));
  writer.WriteString("LayerType", Capitals(layer.KindName()));
  writer.WriteInteger("NumberOfNeurons", ToInteger(layer.NumNeurons()));
  const TActFunction function = layer.GetActivation();
  if (function) {
    writer.OpenBracket();
    writer.WriteToken("All");
    WriteFunction(writer, function);
    writer.CloseBracket();
  }
  WriteMembership(writer, layer);
  const std::vector<std::size_t> own = WriteCommonParameters(writer, layer);
  if (!function || !own.empty()) WriteNeurons(writer, layer, own);
  writer.WriteEndTag("Layer");
}

// --- Connections -----------------------------------------------------------------------------

// The comment with the to-neurons, each above the weights of its column.
void WriteColumnNumbers(Writer& writer, const TBasicConnections& block) {
  constexpr std::string_view kOpening = "/* To->";
  constexpr std::size_t kMarkWidth = 2;
  const std::size_t mark = block.HasFlags() ? kMarkWidth : 0;
  writer.WriteText(kOpening);
  std::size_t width = kWeightWidth - kOpening.size() + mark;
  for (std::size_t to = 0; to < block.Rows(); ++to) {
    WriteRightAligned(writer, std::to_string(to), width);
    width = kWeightWidth + 1 + mark;
  }
  writer.WriteText("  From */");
  writer.WriteNewline();
}

void WriteCell(Writer& writer, const TBasicConnections& block, std::size_t to, std::size_t from) {
  const bool exists = block.Exists(to, from);
  WriteRightAligned(writer, exists ? FormatGeneral(block.GetWeight(to, from), kDigits) : "-",
                    kWeightWidth);
  writer.WriteText(" ");
  if (!block.HasFlags()) return;
  writer.WriteToken(!exists ? "-" : block.IsTrainable(to, from) ? "T" : "F");
}

void WriteMatrix(Writer& writer, const TBasicConnections& block) {
  writer.OpenBracket();
  writer.WriteToken("Matrix");
  writer.WriteToken("Weights");
  if (block.HasFlags()) writer.WriteToken("TrainableInfo");
  writer.CloseBracket();
  WriteColumnNumbers(writer, block);
  for (std::size_t from = 0; from < block.Columns(); ++from) {
    for (std::size_t to = 0; to < block.Rows(); ++to) WriteCell(writer, block, to, from);
    writer.WriteText(" /* " + std::to_string(from) + " */");
    writer.WriteNewline();
  }
  writer.WriteEndTag("Matrix");
}

// The connections that exist, from-neuron by from-neuron.
std::vector<TConnection> ExistingConnections(const TBasicConnections& block) {
  std::vector<TConnection> connections;
  TIterateObjSaveWeights collect(
      [&](const TConnection& connection) { connections.push_back(connection); });
  block.Read(collect);
  std::ranges::stable_sort(connections, {}, &TConnection::from);
  return connections;
}

void WriteWeightList(Writer& writer, const TBasicConnections& block) {
  writer.WriteStartTag("WeightList");
  for (const TConnection& connection : ExistingConnections(block)) {
    writer.OpenBracket();
    writer.WriteInteger("From", ToInteger(connection.from));
    writer.WriteInteger("To", ToInteger(connection.to));
    writer.WriteNumber("Weight", connection.weight, kDecimals);
    if (block.HasFlags()) writer.WriteToken(connection.IsTrainable() ? "Trainable" : "UnTrainable");
    writer.CloseBracket();
  }
  writer.WriteEndTag("WeightList");
}

// Whether a list is the shorter text, and readers believe that so few weights stand for so many
// places: a line of the list is longer than 32 characters.
bool IsSparse(const TBasicConnections& block) {
  constexpr std::size_t kAlwaysBelieved = std::size_t{1} << 16;
  constexpr std::size_t kPlacesPerLine = 32 * kPlacesPerCharacter;
  TIterateObjCount count;
  block.Read(count);
  const std::size_t places = block.Weights().size();
  if (places > kAlwaysBelieved && places / kPlacesPerLine > count.Existing()) return false;
  const double possible = static_cast<double>(block.Rows()) * static_cast<double>(block.Columns());
  return static_cast<double>(count.Existing()) < kSparse * possible;
}

void WriteConnections(Writer& writer, const TBasicConnections& block, std::size_t to,
                      std::size_t from) {
  writer.WriteNewline();
  writer.WriteStartTag("ConnectionLayer");
  writer.WriteInteger("LayerFrom", ToInteger(from));
  writer.WriteInteger("LayerTo", ToInteger(to));
  writer.WriteString("ConnectionType", block.KindName());
  writer.OpenBracket();
  writer.WriteToken("Attributes");
  writer.WriteToken(block.HasFlags() ? "Pruneable" : "UnPrunable");
  writer.WriteToken(block.HasFlags() ? "Freezable" : "UnFreezable");
  writer.CloseBracket();
  if (IsSparse(block)) {
    WriteWeightList(writer, block);
  } else {
    WriteMatrix(writer, block);
  }
  writer.WriteEndTag("ConnectionLayer");
}

void WriteNetwork(Writer& writer, const TBasicNetwork& network) {
  writer.WriteFormatVersion();
  writer.WriteStartTag("NeuralNetwork");
  WriteHeader(writer, network);
  WriteOwnBlock(writer, network);
  for (std::size_t i = 0; i < network.NumLayers(); ++i) WriteLayer(writer, network.Layer(i));
  for (std::size_t from = 0; from < network.NumLayers(); ++from) {
    for (std::size_t to = 0; to < network.NumLayers(); ++to) {
      const TBasicConnections& block = network.Connections(to, from);
      if (block.IsConnected()) WriteConnections(writer, block, to, from);
    }
  }
  writer.WriteNewline();
  writer.WriteEndTag("NeuralNetwork");
}

}  // namespace

void SaveNetwork(const std::string& path, const TBasicNetwork& network) {
  CheckBiasLayers(network);
  FileTools::SaveFile(path, [&](Writer& writer) { WriteNetwork(writer, network); });
}

}  // namespace kiln::NetworkFiler
