#include "Export/CFile.h"

#include <cmath>

#include "Export/CLayers.h"
#include "Export/Identifiers.h"
#include "FileHandler/Syntax/SafeFile.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/TIterateObj.h"
#include "Shared/TException.h"

namespace kiln::CFile {

namespace {

class TIterateObjFinite : public TIterateObjRead {
 public:
  void Read(const TConnection& connection) override {
    all_ = all_ && std::isfinite(connection.weight);
  }
  bool All() const { return all_; }

 private:
  bool all_ = true;
};

bool HasFiniteGains(const TBasicNetwork& network) {
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    for (std::size_t i = 0; i < network.Layer(layer).NumNeurons(); ++i) {
      if (!std::isfinite(network.Layer(layer).Neuron(i).Gain())) return false;
    }
  }
  return true;
}

void CheckFinite(const TBasicNetwork& network) {
  TIterateObjFinite finite;
  network.Read(finite);
  if (!finite.All() || !HasFiniteGains(network)) {
    throw TException("Weights that are no numbers", "Bad Network", "CFile::Save");
  }
}

std::string Listed(const std::vector<std::string>& names, const char* array) {
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += std::string(array) + '[' + std::to_string(i) + "]  " + CommentText(names[i]) + '\n';
  }
  return text;
}

// "4 inputs, 3 outputs; neurons by layer: 4, 5, 3", or the grid of a map.
std::string Shape(const TBasicNetwork& network) {
  std::string text = std::to_string(network.NumInputs()) + " inputs, " +
                     std::to_string(network.NumOutputs()) + " outputs; ";
  const char* gap = "";
  if (const auto* map = dynamic_cast<const TKohonenNetwork*>(&network)) {
    text += "a map of ";
    for (const int size : map->Grid().Sizes()) {
      text += gap + std::to_string(size);
      gap = " x ";
    }
    return text + " units\n";
  }
  text += "neurons by layer: ";
  for (std::size_t layer = 0; layer < network.NumLayers(); ++layer) {
    text += gap + std::to_string(network.Layer(layer).NumNeurons());
    gap = ", ";
  }
  return text + '\n';
}

std::string Comment(const std::string& name, const TBasicNetwork& network,
                    const ColumnNames& names) {
  std::string text = "void " + name + "(const double *input, double *output);\n";
  const bool is_map = dynamic_cast<const TKohonenNetwork*>(&network);
  if (is_map) text += "int " + name + "_unit(const double *input);\n";
  text += '\n' + std::string(network.KindName()) + ", written by Kiln: " + Shape(network);
  const std::size_t stack = is_map ? 0 : StackOf(network);
  if (stack > 0)
    text += "Values of layers take " + std::to_string(stack) + " bytes of the stack.\n";
  return text + Listed(names.Inputs, "input") + Listed(names.Outputs, "output");
}

}  // namespace

void Save(const std::string& path, std::string_view name, const TBasicNetwork& network,
          const ColumnNames& names) {
  const auto* map = dynamic_cast<const TKohonenNetwork*>(&network);
  if (!map) CheckLayers(network);
  CheckFinite(network);
  FileTools::SaveFile(path, [&](FileTools::Writer& out) {
    TCSource source(out, CIdentifier(name));
    source.WriteComment(Comment(source.Name(), network, names));
    if (map) {
      WriteMap(source, *map);
    } else {
      WriteLayers(source, network);
    }
    source.Finish();
  });
}

}  // namespace kiln::CFile
