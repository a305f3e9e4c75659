#include "FileHandler/SaveTarn.h"

#include <cstdint>

#include "FileHandler/TarnSections.h"
#include "Tarn/TConditionLayer.h"
#include "Tarn/TTarnOutputLayer.h"

namespace kiln::NetworkFiler {

namespace {

using FileTools::Writer;

void SaveMF(Writer& writer, const TFuzzyLayer& layer, std::string_view tag) {
  const TMFGroups& groups = layer.Groups();
  writer.WriteStartTag(tag);
  for (std::size_t i = 0; i < groups.NumVariables(); ++i) {
    writer.OpenBracket();
    writer.WriteInteger(VariableOf(tag), static_cast<std::int64_t>(i));
    writer.WriteInteger(kCount, static_cast<std::int64_t>(groups.Count(i)));
    writer.CloseBracket();
  }
  writer.WriteEndTag(tag);
}

}  // namespace

void SaveInputMF(Writer& writer, const TConditionLayer& layer) {
  SaveMF(writer, layer, kInputMF);
}

void SaveOutputMF(Writer& writer, const TTarnOutputLayer& layer) {
  SaveMF(writer, layer, kOutputMF);
}

void WriteMembership(Writer& writer, const TBasicLayer& layer) {
  if (const auto* conditions = dynamic_cast<const TConditionLayer*>(&layer)) {
    SaveInputMF(writer, *conditions);
  } else if (const auto* outputs = dynamic_cast<const TTarnOutputLayer*>(&layer)) {
    SaveOutputMF(writer, *outputs);
  }
}

}  // namespace kiln::NetworkFiler
